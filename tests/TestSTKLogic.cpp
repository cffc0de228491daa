#include "PluginTest.h"

#include <utility>

#define FILE_NAME "../../src/STKPlugin/STKLogic"

/* Takes down every signal of the logic, in the order and on the thread in which it is emitted. */
class SignalRecord : public QObject
{
public:
    explicit SignalRecord(STKLogic *logic)
    {
        for (int i = STKLogic::staticMetaObject.methodOffset(); i < STKLogic::staticMetaObject.methodCount(); ++i)
            QMetaObject::connect(logic, i, this, QObject::staticMetaObject.methodCount() + i, Qt::DirectConnection);
    }
    int qt_metacall(QMetaObject::Call, int id, void **arguments) override
    {
        const QMetaMethod signal = STKLogic::staticMetaObject.method(id - QObject::staticMetaObject.methodCount());
        const bool *const value = signal.parameterCount() ? static_cast<bool *>(arguments[1]) : nullptr;
        emitted << signal.name() + (value ? *value ? "(true)" : "(false)" : "");
        return -1;
    }

    QStringList emitted;
};

/* STKLogic on its own: no window, the callbacks fired from a foreign thread. */
class TestSTKLogic : public PluginTest
{
    Q_OBJECT

    STKLogic *logic;
    QScopedPointer<SignalRecord> signals_;

    QStringList emitted() { return std::exchange(signals_->emitted, QStringList()); }

    /* The lines of one function from Start to End; "%" in a line stands for its three fields. */
    static QStringList lines(const char *function, const QStringList &between, bool ends = true)
    {
        QStringList all = QStringList("Start of %") + between;
        if (ends)
            all << "End of %";
        return all.replaceInStrings("%", QString(FILE_NAME ": %1: TIME: ").arg(function));
    }

private slots:
    void init()
    {
        PluginTest::init();
        logic = STKLogic::CreateInstance();
        signals_.reset(new SignalRecord(logic));
        STKLogic::RegisterSTKCB();
        modem.takeCalls();
        takeTrace();
    }

    void cleanup()
    {
        STKLogic::DestroyInst();
        PluginTest::cleanup();
    }

    void signalsStandInTheirOrder()
    {
        const QMetaObject &meta = STKLogic::staticMetaObject;
        QStringList names;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            names << meta.method(i).methodSignature();
        QCOMPARE(names.join(" "),
                 QString("DevAvailable(bool) STKSetupMenu() STKDisplayText() STKGetInkey() STKGetInput() "
                         "STKSetupCall() STKPlayTone() STKSelItem() STKRefresh() STKSendSS() STKSendSMS() "
                         "STKSendUSSD() STKLaunchBrowser() STKSetupIdleModeText() STKEndSession() "
                         "ShowMainMenu() CloseInputDlg()"));
        QCOMPARE(meta.method(meta.methodOffset()).parameterNames().first(), QByteArray("isAvaillable"));
        QCOMPARE(meta.className(), "STKLogic");
    }

    void registrationGoesOnAfterAFailure()
    {
        for (const char *name : {"RegisterCallBack", "RegisterDevMgrCallback", "UnRegisterCallBack", "UnRegisterDevMgrCallback"})
            modem.status[name] = -1;
        STKLogic::RegisterSTKCB();
        STKLogic::UnresgisterSTKCB();
        QCOMPARE(modem.takeCalls(), QStringList({"RegisterCallBack()", "RegisterDevMgrCallback()",
                                                 "UnRegisterCallBack(same)", "UnRegisterDevMgrCallback(same)"}));
        const QString line(FILE_NAME ": RegisterSTKCB: LINE: ");
        QStringList trace = takeTrace();
        trace.replaceInStrings(QRegularExpression("RegisterSTKCB: \\d+: $"), "RegisterSTKCB: LINE: ");
        QCOMPARE(trace, lines("RegisterSTKCB", {"MOVA_STK_RegisterCallBack called " + line, "MOVA_STK_RegisterCallBack failed %",
                                                "MOVA_DevSrv_RegisterDevMgrCallback called " + line,
                                                "MOVA_DevSrv_RegisterDevMgrCallback failed " + line})
                     + lines("UnresgisterSTKCB", {"MOVA_STK_UnRegisterCallBack failed %",
                                                  "MOVA_DevSrv_UnRegisterDevMgrCallback failed %"}));
    }

    void everyTypeHasItsSignal_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("signal");
        const char *names[] = {"STKSetupMenu", "STKDisplayText", "STKGetInkey", "STKGetInput", "STKSetupCall",
                               "STKPlayTone", "STKSelItem", "STKRefresh", "STKSendSMS", "STKSendSMS",
                               "STKSendUSSD", "STKLaunchBrowser", "STKSetupIdleModeText"};
        for (int i = 0; i < 13; ++i)
            QTest::addRow("%d", i) << i << names[i];
        QTest::newRow("99") << 99 << "STKEndSession";
        for (int type : {13, 55, 98, 100, -1, INT_MIN, INT_MAX})
            QTest::addRow("%d", type) << type << QString();
    }

    void everyTypeHasItsSignal()
    {
        QFETCH(int, type);
        QFETCH(QString, signal);
        QCOMPARE(modem.notify(type, 4), 0);
        QCOMPARE(emitted().join(" "), signal);
        QCOMPARE(modem.takeCalls(), QStringList());
        QVERIFY(takeTrace().contains(
            QString("enStkType value is %1,  " FILE_NAME ": stkEventSwitchCase: TIME: ").arg(type)));
        QVERIFY(logic->GetResponseVar());
    }

    void aNullNotificationOnlyRaisesTheResponseFlag()
    {
        logic->UpdateCBReturnVal(false);
        QCOMPARE(takeTrace(), lines("UpdateCBReturnVal", {"Updated vale is 0, %"}));
        QCOMPARE(modem.notifyNull(), 0);
        QCOMPARE(takeTrace(), lines("OnSTKEventCB", {"pNotifyData is null %"}, false));
        QVERIFY(logic->GetResponseVar());
        QCOMPARE(takeTrace(), QStringList("Start of with m_bRespondence  value= 1, " FILE_NAME ": GetResponseVar: TIME: "));
        QCOMPARE(emitted() + modem.takeCalls(), QStringList());
    }

    void aTimeOutClosesTheInputAndShowsTheMenu()
    {
        logic->UpdateCBReturnVal(false);
        modem.notify(MOVA_STKTYPE_DISPLAY_TEXT, 9, 1);
        QCOMPARE(emitted() + modem.takeCalls(), QStringList({"CloseInputDlg", "STKSetupMenu"}));
        QVERIFY(takeTrace().contains("STK TimeOut " FILE_NAME ": OnSTKEventCB: TIME: "));
        modem.notify(MOVA_STKTYPE_GET_INPUT, 10, 2); // only 1 is a time-out
        QCOMPARE(modem.takeCalls(), QStringList("SendNoDataResponse(10,3,0)"));
    }

    void theVerdictOfTheHandlerBeforeDecides()
    {
        logic->UpdateCBReturnVal(false);
        takeTrace();
        modem.notify(55, -3);
        QCOMPARE(emitted() + modem.takeCalls(), QStringList({"ShowMainMenu", "SendNoDataResponse(-3,55,0)"}));
        const QString dispatched = lines("stkEventSwitchCase", {"enStkType value is 55,  %"}).join("|");
        QCOMPARE(takeTrace().join("|"), lines("OnSTKEventCB", {dispatched, "m_bRet is false %"}).join("|"));
        // It stands until a handler changes it, and a failing answer is only traced.
        modem.status["SendNoDataResponse"] = -1;
        modem.notify(MOVA_STKTYPE_SETUP_MENU, 32767);
        QCOMPARE(emitted() + modem.takeCalls(), QStringList({"STKSetupMenu", "ShowMainMenu", "SendNoDataResponse(32767,0,0)"}));
        QVERIFY(takeTrace().contains("MOVA_STKSrv_SendNoDataResponse Failed " FILE_NAME ": OnSTKEventCB: TIME: "));
        logic->UpdateCBReturnVal(true);
        modem.notify(MOVA_STKTYPE_SETUP_MENU, 1);
        QCOMPARE(modem.takeCalls(), QStringList());
    }

    void deviceEvents()
    {
        for (int code : {6601, 6602, 6603, 6600, 6604, 0, -1})
            QCOMPARE(modem.device(code), 1);
        QCOMPARE(emitted(), QStringList({"DevAvailable(false)", "DevAvailable(true)", "DevAvailable(false)"}));
    }

    void callbacksWithoutAnInstanceTouchNothing()
    {
        STKLogic::DestroyInst();
        QCOMPARE(modem.notify(MOVA_STKTYPE_DISPLAY_TEXT, 1), 0);
        QCOMPARE(modem.notifyNull(), 0);
        QCOMPARE(modem.device(6601), 1);
        QCOMPARE(modem.takeCalls(), QStringList());
        STKLogic::DestroyInst();
        logic = STKLogic::CreateInstance();
        QVERIFY(logic == STKLogic::CreateInstance());
        QVERIFY(!logic->GetResponseVar());
    }

    void menus_data()
    {
        QTest::addColumn<bool>("sub");
        QTest::newRow("main") << false;
        QTest::newRow("sub") << true;
    }

    void menus()
    {
        QFETCH(bool, sub);
        const char *const function = sub ? "GetSubMenu" : "GetMainMenu";
        const QString release = sub ? "ReleaseSubMenus" : "ReleaseMenus";
        const QStringList calls({QString(function) + (sub ? "(21)" : "()"), release + "()"});
        QStringList between({QString("Calling  MOVA_STKSrv_%1()%").arg(function), QString("MOVA_STKSrv_%1() Returned = 0: %").arg(function)});
        const QString whole(256, QChar(0x416)); // fills an item's array: no zero at its end
        const QString wholeTitle(sub ? 257 : 256, QChar('t'));
        QList<StkItemClass> list;
        list << StkItemClass{1, "old"};
        StkMenuItems menu;
        menu.strTitle = "old";
        menu.itemList = &list;
        const auto get = [&] { return sub ? logic->GetSubMenu(&menu) : logic->GetMainMenu(&menu); };
        modem.mainTitle = modem.subTitle = wholeTitle;
        modem.mainItems = modem.subItems = {{-1, "<b>x</b>"}, {32767, whole}, {-32768, QString::fromUtf8("\xF0\x9F\x98\x80")}};
        modem.status[release.toStdString()] = -5;
        modem.notify(MOVA_STKTYPE_SELECT_ITEM, 21);
        takeTrace();

        QVERIFY(get());
        QCOMPARE(takeTrace(), lines(function, between + QStringList({"Calling  MOVA_STKSrv_" + release + "()%",
                                                                     "MOVA_STKSrv_" + release + "() failed : %"})));
        QCOMPARE(modem.takeCalls(), calls);
        QCOMPARE(menu.strTitle, wholeTitle);
        QCOMPARE(list.size(), 3);
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(list[i].nItemId, int(modem.mainItems[i].id));
            QCOMPARE(list[i].strItemText, modem.mainItems[i].text);
        }
        for (int count : {0, -3, 5}) {
            modem.itemCountOverride = count;
            modem.nullItems = count == 5;
            QVERIFY(get());
            QCOMPARE(list.size(), 0);
            QCOMPARE(menu.strTitle, wholeTitle);
            QCOMPARE(modem.takeCalls(), calls);
        }
        list << StkItemClass{1, "old"};
        modem.status[function] = -7;
        takeTrace();
        QVERIFY(!get());
        QVERIFY(menu.strTitle.isNull());
        QCOMPARE(list.size(), 0);
        QCOMPARE(modem.takeCalls(), calls.mid(0, 1));
        QCOMPARE(takeTrace(), lines(function, between.replaceInStrings("= 0", "= -7"), false));
    }

    void selections_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("call");
        QTest::newRow("main menu, always 1") << QString() << 70000 << 0 << "SelectMenuItem(1,4464)";
        QTest::newRow("main menu refused") << QString() << -1 << -9 << "SelectMenuItem(1,-1)";
        QTest::newRow("select") << "SUBMENU_ACTION_SELECT_ITEM" << -1 << 0 << "SelectSubMenuItem(21,1,-1)";
        QTest::newRow("back") << "SUBMENU_ACTION_RETURN_BACK_ITEM" << 0 << 3 << "SelectSubMenuItem(21,3,0)";
        QTest::newRow("empty") << "" << 65535 << 0 << "SelectSubMenuItem(21,0,-1)";
        QTest::newRow("letter case") << "submenu_action_select_item" << 2 << 0 << "SelectSubMenuItem(21,0,2)";
    }

    void selections()
    {
        QFETCH(QString, action);
        QFETCH(int, index);
        QFETCH(int, status);
        QFETCH(QString, call);
        const bool main = action.isNull();
        const QString name = main ? "SelectMenuItem" : "SelectSubMenuItem";
        modem.notify(MOVA_STKTYPE_SELECT_ITEM, 21);
        modem.status[name.toStdString()] = status;
        takeTrace();
        QCOMPARE(main ? logic->SelectMainMenuItem(index) : logic->SelectSubMenuItem(action, index), status == 0);
        QCOMPARE(modem.takeCalls(), QStringList(call));
        QStringList between(QString("Calling  MOVA_STKSrv_%1(%2) %").arg(name).arg(index));
        between << QString("MOVA_STKSrv_%1() returned %2: %").arg(name).arg(status);
        if (status == 0)
            between << QString("MOVA_STKSrv_%1() success : %").arg(name);
        QCOMPARE(takeTrace(), lines(main ? "SelectMainMenuItem" : "SelectSubMenuItem", between));
    }

    void details()
    {
        const QString whole(256, QChar('w'));
        modem.notify(MOVA_STKTYPE_GET_INKEY, 33);
        FakeModemService::put(modem.idleText.szText, whole);
        FakeModemService::put(modem.playTone.szText, QString(257, QChar('a')));
        modem.playTone.nTone = -8;
        modem.playTone.usDuration = 0xFFFF;
        FakeModemService::put(modem.inKey.szText, "<GO-BACKWARDS>");
        modem.inKey.nInputType = 3;
        modem.inKey.bOption = 1;
        modem.inKey.usDuration = 0xFFFF;
        FakeModemService::put(modem.input.szText, whole);
        FakeModemService::put(modem.input.szDefaultText, whole);
        modem.input.nInputType = 2;
        modem.input.bEcho = 1;
        modem.input.sMinLen = -1;
        modem.input.sMaxLen = 300;

        QString text;
        QVERIFY(logic->GetIdleModePrompt(&text));
        QCOMPARE(text, whole);
        MOVAPlayToneRequest tone = {0, 0, ""};
        QVERIFY(logic->GetPlayTone(&tone));
        QCOMPARE(tone.nTone, -8);
        QCOMPARE(tone.nDuration, 65535);
        QCOMPARE(tone.strText, QString(257, QChar('a')));
        StkInKeyRequest key = {"", 0, 0, 0, 77, 77, 77, "kept"};
        QVERIFY(logic->GetInKeyRquest(&key));
        QCOMPARE(key.strText, QString("<GO-BACKWARDS>"));
        QCOMPARE(key.nInputType, 3);
        QCOMPARE(key.bOption, 1);
        QCOMPARE(key.nDuration, 65535);
        QCOMPARE(key.bEcho, 77);
        QCOMPARE(key.strDefaultText, QString("kept"));
        StkInKeyRequest input = {"", 0, 1, 77, 0, 0, 0, ""};
        QVERIFY(logic->GetInputRequest(&input));
        QCOMPARE(input.strText, whole);
        QCOMPARE(input.strDefaultText, whole);
        QCOMPARE(input.nInputType, 2);
        QCOMPARE(input.bEcho, 1);
        QCOMPARE(input.bOption, 0);
        QCOMPARE(input.nMinLen, -1);
        QCOMPARE(input.nMaxLen, 300);
        QCOMPARE(input.nDuration, 77);
        QVERIFY(logic->GetRefreshInfo());
        QCOMPARE(modem.takeCalls(), QStringList({"GetIdleModePrompt(33)", "GetPlayTone(33)", "GetInKeyRequest(33)",
                                                 "GetInputRequest(33)", "GetRefreshInfo(33)"}));
    }

    void invalidValuesLeaveTheFieldAlone()
    {
        for (int mode : {1, 4, -1}) {
            modem.launchBrowser.nLaunchMode = mode;
            FakeModemService::put(modem.launchBrowser.szUrl, "http://a");
            MOVALaunchBrowser browser = {42, ""};
            QVERIFY(logic->GetLaunchBrowser(&browser));
            QCOMPARE(browser.nLaunchMode, 42);
            QCOMPARE(browser.strUrl, QString("http://a"));
        }
        for (int mode : {0, 2, 3}) {
            modem.launchBrowser.nLaunchMode = mode;
            MOVALaunchBrowser browser = {42, ""};
            QVERIFY(logic->GetLaunchBrowser(&browser));
            QCOMPARE(browser.nLaunchMode, mode);
        }
        modem.inKey.nInputType = modem.input.nInputType = 4;
        modem.inKey.bOption = modem.input.bOption = 2;
        modem.input.bEcho = -1;
        StkInKeyRequest request = {"", 42, 43, 0, 44, 0, 0, ""};
        QVERIFY(logic->GetInKeyRquest(&request));
        QVERIFY(logic->GetInputRequest(&request));
        QCOMPARE(request.nInputType, 42);
        QCOMPARE(request.bOption, 43);
        QCOMPARE(request.bEcho, 44);
        QString text, mode;
        int duration = 0;
        modem.promptText.nClearMode = 5;
        modem.promptText.usDuration = 65535;
        QVERIFY(logic->GetPromptText(&text, &mode, &duration));
        QCOMPARE(mode, QString());
        QCOMPARE(duration, 65535);
        modem.promptText.nClearMode = 0;
        QVERIFY(logic->GetPromptText(&text, &mode, &duration));
        QCOMPARE(mode, QString("STK_CLR_MODE_AUTO"));
    }

    void aFailedGetChangesNothing()
    {
        for (const char *name : {"GetIdleModePrompt", "GetPlayTone", "GetLaunchBrowser", "GetInKeyRequest",
                                 "GetInputRequest", "GetPromptText", "GetRefreshInfo"})
            modem.status[name] = -6;
        QString text = "kept", mode = "kept";
        int duration = 42;
        MOVAPlayToneRequest tone = {42, 42, "kept"};
        MOVALaunchBrowser browser = {42, "kept"};
        StkInKeyRequest request = {"kept", 42, 42, 42, 42, 42, 42, "kept"};
        takeTrace();
        QVERIFY(!logic->GetPlayTone(&tone));
        QCOMPARE(takeTrace(), lines("GetPlayTone", {"Calling MOVA_STKSrv_GetPlayTone(): %",
                                                    "MOVA_STKSrv_GetPlayTone() returned -6: %"}, false));
        QVERIFY(!logic->GetIdleModePrompt(&text) && !logic->GetLaunchBrowser(&browser)
                && !logic->GetInKeyRquest(&request) && !logic->GetInputRequest(&request)
                && !logic->GetPromptText(&text, &mode, &duration) && !logic->GetRefreshInfo());
        QCOMPARE(text + mode + tone.strText + browser.strUrl + request.strText + request.strDefaultText,
                 QString("keptkeptkeptkeptkeptkept"));
        QCOMPARE(duration + tone.nTone + tone.nDuration + browser.nLaunchMode + request.nInputType + request.bOption
                     + request.nDuration + request.bEcho + request.nMinLen + request.nMaxLen, 420);
    }

    void answers()
    {
        modem.notify(MOVA_STKTYPE_GET_INPUT, 12);
        takeTrace();
        const QString smile = QString::fromUtf8("a\xF0\x9F\x98\x80");
        QVERIFY(logic->CallStkAnswerInput("STK_TYPE_OK", smile));
        QCOMPARE(takeTrace(), lines("CallStkAnswerInput", {"Calling MOVA_STKSrv_AnswerInput(" + smile + "): %",
                                                           "MOVA_STKSrv_AnswerInKey() returned 0: %",
                                                           "MOVA_STKSrv_AnswerInput() success: %"}));
        QVERIFY(logic->CallStkAnswerInput("stk_type_ok", "x"));
        QVERIFY(logic->CallStkAnswerInKey("STK_TYPE_OK", "1"));
        QVERIFY(logic->CallStkAnswerInKey("STK_TYPE_CANCEL", ""));
        QVERIFY(logic->SendNoDataResponse(MOVA_STKTYPE_SETUP_CALL, STK_UI_TR_NOT_SUPPORTED));
        modem.status["AnswerInKey"] = modem.status["AnswerInput"] = modem.status["SendNoDataResponse"] = 1;
        QVERIFY(!logic->CallStkAnswerInKey("STK_TYPE_OK", "") && !logic->CallStkAnswerInput("STK_TYPE_OK", ""));
        takeTrace();
        QVERIFY(!logic->SendNoDataResponse(MOVA_STKTYPE_DISPLAY_TEXT, STK_UI_TR_SUCCESS));
        QCOMPARE(takeTrace(), lines("SendNoDataResponse", {"Calling MOVA_STKSrv_SendNoDataResponse(): %",
                                                           "MOVA_STKSrv_SendNoDataResponse() returned 1: %"}, false));
        QCOMPARE(modem.takeCalls(),
                 QStringList({"AnswerInput(12,1," + smile + ")", "AnswerInput(12,0,x)", "AnswerInKey(12,1,1)",
                              "AnswerInKey(12,0,)", "SendNoDataResponse(12,4,4)", "AnswerInKey(12,1,)",
                              "AnswerInput(12,1,)", "SendNoDataResponse(12,1,1)"}));
    }
};

QTEST_MAIN(TestSTKLogic)
#include "TestSTKLogic.moc"
