#include "PluginTest.h"

#include <functional>
#include <utility>

#define FILE_NAME "../../src/STKPlugin/STKLogic"

/* Takes down every signal of the logic, in the order and on the thread in which it is emitted. */
class SignalRecord : public QObject {
public:
    explicit SignalRecord(STKLogic *logic)
    {
        for (int i = STKLogic::staticMetaObject.methodOffset();
             i < STKLogic::staticMetaObject.methodCount(); ++i)
            QMetaObject::connect(logic, i, this, QObject::staticMetaObject.methodCount() + i,
                                 Qt::DirectConnection);
    }
    int qt_metacall(QMetaObject::Call, int id, void **arguments) override
    {
        const QMetaMethod signal =
            STKLogic::staticMetaObject.method(id - QObject::staticMetaObject.methodCount());
        const bool *const value =
            signal.parameterCount() ? static_cast<bool *>(arguments[1]) : nullptr;
        emitted << signal.name() + (value ? *value ? "(true)" : "(false)" : "");
        return -1;
    }

    QStringList emitted;
};

/* STKLogic on its own: no window, the callbacks fired from a foreign thread. */
class TestSTKLogic : public PluginTest {
    Q_OBJECT

    STKLogic *logic;
    QScopedPointer<SignalRecord> signals_;

    /* The signals, then the calls, since the last time. */
    QString happened() { return (emitted() + modem.takeCalls()).join(" "); }
    QStringList emitted() { return std::exchange(signals_->emitted, QStringList()); }

    static QString fields(const StkInKeyRequest &r)
    {
        QString fields = r.strText + " ";
        for (int number : {r.nInputType, r.bOption, r.nDuration, r.bEcho, r.nMinLen, r.nMaxLen})
            fields += QString::number(number) + " ";
        return fields + r.strDefaultText;
    }

    /* The lines of one function from Start to End; "%" in a line stands for its three fields. */
    static QStringList lines(const QString &function, const QStringList &between, bool ends = true)
    {
        QStringList all = QStringList("Start of %") + between;
        if (ends)
            all << "End of %";
        return all.replaceInStrings("%", FILE_NAME ": " + function + ": TIME: ");
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
        QCOMPARE(
            methodsOf(meta),
            QString(
                "DevAvailable(bool) STKSetupMenu() STKDisplayText() STKGetInkey() STKGetInput() "
                "STKSetupCall() STKPlayTone() STKSelItem() STKRefresh() STKSendSS() STKSendSMS() "
                "STKSendUSSD() STKLaunchBrowser() STKSetupIdleModeText() STKEndSession() "
                "ShowMainMenu() CloseInputDlg()"));
        QCOMPARE(meta.method(meta.methodOffset()).parameterNames().first(),
                 QByteArray("isAvaillable"));
        QCOMPARE(meta.className(), "STKLogic");
    }

    void registrationGoesOnAfterAFailure()
    {
        for (const char *name : {"CallBack", "DevMgrCallback"})
            modem.status[QString("Register") + name] = modem.status[QString("UnRegister") + name] =
                -1;
        STKLogic::RegisterSTKCB();
        STKLogic::UnresgisterSTKCB();
        QCOMPARE(modem.takeCalls(),
                 QStringList({"RegisterCallBack()", "RegisterDevMgrCallback()",
                              "UnRegisterCallBack(same)", "UnRegisterDevMgrCallback(same)"}));
        const QString line(FILE_NAME ": RegisterSTKCB: LINE: ");
        QCOMPARE(
            takeTrace().replaceInStrings(QRegularExpression("RegisterSTKCB: \\d+: $"),
                                         "RegisterSTKCB: LINE: "),
            lines("RegisterSTKCB",
                  {"MOVA_STK_RegisterCallBack called " + line, "MOVA_STK_RegisterCallBack failed %",
                   "MOVA_DevSrv_RegisterDevMgrCallback called " + line,
                   "MOVA_DevSrv_RegisterDevMgrCallback failed " + line}) +
                lines("UnresgisterSTKCB",
                      {"MOVA_STK_UnRegisterCallBack failed %",
                       "MOVA_DevSrv_UnRegisterDevMgrCallback failed %"}));
    }

    void everyTypeHasItsSignal()
    {
        const std::pair<int, const char *> rows[] = {{0, "STKSetupMenu"},
                                                     {1, "STKDisplayText"},
                                                     {2, "STKGetInkey"},
                                                     {3, "STKGetInput"},
                                                     {4, "STKSetupCall"},
                                                     {5, "STKPlayTone"},
                                                     {6, "STKSelItem"},
                                                     {7, "STKRefresh"},
                                                     {8, "STKSendSMS"},
                                                     {9, "STKSendSMS"},
                                                     {10, "STKSendUSSD"},
                                                     {11, "STKLaunchBrowser"},
                                                     {12, "STKSetupIdleModeText"},
                                                     {99, "STKEndSession"},
                                                     {13, ""},
                                                     {55, ""},
                                                     {98, ""},
                                                     {100, ""},
                                                     {-1, ""},
                                                     {INT_MIN, ""},
                                                     {INT_MAX, ""}};
        for (const auto &row : rows) {
            logic->SetResponseVar(false);
            QCOMPARE(modem.notify(row.first, 4), 0);
            QCOMPARE(emitted().join(" "), QString(row.second));
            QVERIFY(takeTrace().contains(
                QString("enStkType value is %1,  " FILE_NAME ": stkEventSwitchCase: TIME: ")
                    .arg(row.first)));
            QVERIFY(logic->GetResponseVar());
        }
        QCOMPARE(modem.takeCalls(), QStringList());
    }

    void aNullNotificationOnlyRaisesTheResponseFlag()
    {
        logic->UpdateCBReturnVal(false);
        QCOMPARE(takeTrace(), lines("UpdateCBReturnVal", {"Updated vale is 0, %"}));
        QCOMPARE(modem.notifyNull(), 0);
        QCOMPARE(takeTrace(), lines("OnSTKEventCB", {"pNotifyData is null %"}, false));
        QVERIFY(logic->GetResponseVar());
        QCOMPARE(takeTrace().join("|"),
                 QString("Start of with m_bRespondence  value= 1, " FILE_NAME
                         ": GetResponseVar: TIME: "));
        QCOMPARE(happened(), QString(""));
    }

    void theVerdictOfTheHandlerBeforeDecides()
    {
        logic->UpdateCBReturnVal(false);
        takeTrace();
        modem.notify(55, -3);
        QCOMPARE(happened(), QString("ShowMainMenu SendNoDataResponse(-3,55,0)"));
        const QString dispatched =
            lines("stkEventSwitchCase", {"enStkType value is 55,  %"}).join("|");
        QCOMPARE(takeTrace().join("|"),
                 lines("OnSTKEventCB", {dispatched, "m_bRet is false %"}).join("|"));
        // A time-out has no verdict; only 1 is one.
        modem.notify(MOVA_STKTYPE_DISPLAY_TEXT, 9, 1);
        QCOMPARE(happened(), QString("CloseInputDlg STKSetupMenu"));
        QVERIFY(takeTrace().contains("STK TimeOut " FILE_NAME ": OnSTKEventCB: TIME: "));
        modem.notify(MOVA_STKTYPE_GET_INPUT, 10, 2);
        QCOMPARE(happened(), QString("STKGetInput ShowMainMenu SendNoDataResponse(10,3,0)"));
        // It stands until a handler changes it, and a failing answer is only traced.
        modem.status["SendNoDataResponse"] = -1;
        modem.notify(MOVA_STKTYPE_SETUP_MENU, 32767);
        QCOMPARE(happened(), QString("STKSetupMenu ShowMainMenu SendNoDataResponse(32767,0,0)"));
        QVERIFY(takeTrace().contains("MOVA_STKSrv_SendNoDataResponse Failed " FILE_NAME
                                     ": OnSTKEventCB: TIME: "));
        logic->UpdateCBReturnVal(true);
        modem.notify(MOVA_STKTYPE_SETUP_MENU, 1);
        QCOMPARE(modem.takeCalls(), QStringList());
    }

    void deviceEvents()
    {
        for (int code : {6601, 6602, 6603, 6600, 6604, 0, -1})
            QCOMPARE(modem.device(code), 1);
        QCOMPARE(emitted(),
                 QStringList({"DevAvailable(false)", "DevAvailable(true)", "DevAvailable(false)"}));
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

    void menus_data() { addRows("function", {"GetMainMenu", "GetSubMenu"}); }
    void menus()
    {
        QFETCH(QString, function);
        const bool sub = function == "GetSubMenu";
        const QString release = sub ? "ReleaseSubMenus" : "ReleaseMenus";
        const QStringList calls({function + (sub ? "(21)" : "()"), release + "()"});
        const QString name = "MOVA_STKSrv_" + function;
        QStringList between({"Calling  " + name + "()%", name + "() Returned = 0: %"});
        const QString smile = QString::fromUtf8("\xF0\x9F\x98\x80"),
                      whole(256, QChar(0x416)); // no zero at its end
        const QString wholeTitle(sub ? 257 : 256, QChar('t'));
        QList<StkItemClass> list{{1, "old"}};
        StkMenuItems menu{"old", &list};
        const auto get = [&] { return sub ? logic->GetSubMenu(&menu) : logic->GetMainMenu(&menu); };
        modem.mainTitle = modem.subTitle = wholeTitle;
        modem.mainItems = modem.subItems = {{-1, "<b>x</b>"}, {32767, whole}, {-32768, smile}};
        modem.status[release] = -5;
        modem.notify(MOVA_STKTYPE_SELECT_ITEM, 21);
        takeTrace();

        QVERIFY(get());
        QCOMPARE(takeTrace(),
                 lines(function,
                       between +
                           QStringList({"Calling  MOVA_STKSrv_" + release + "()%",
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

    void selections()
    {
        const struct {
            QString action; // null: of the main menu
            int index, status;
            QString call;
        } rows[] = {
            {QString(), 70000, 0, "SelectMenuItem(1,4464)"}, // the menu is always 1
            {QString(), -1, -9, "SelectMenuItem(1,-1)"},
            {"SUBMENU_ACTION_SELECT_ITEM", -1, 0, "SelectSubMenuItem(21,1,-1)"},
            {"SUBMENU_ACTION_RETURN_BACK_ITEM", 0, 3, "SelectSubMenuItem(21,3,0)"},
            {"", 65535, 0, "SelectSubMenuItem(21,0,-1)"},
            {"submenu_action_select_item", 2, 0, "SelectSubMenuItem(21,0,2)"},
        };
        modem.notify(MOVA_STKTYPE_SELECT_ITEM, 21);
        for (const auto &row : rows) {
            const bool main = row.action.isNull();
            const QString name = main ? "SelectMenuItem" : "SelectSubMenuItem";
            modem.status[name] = row.status;
            takeTrace();
            QCOMPARE(main ? logic->SelectMainMenuItem(row.index)
                          : logic->SelectSubMenuItem(row.action, row.index),
                     row.status == 0);
            QCOMPARE(modem.takeCalls(), QStringList(row.call));
            QStringList between(QString("Calling  MOVA_STKSrv_%1(%2) %").arg(name).arg(row.index));
            between << QString("MOVA_STKSrv_%1() returned %2: %").arg(name).arg(row.status);
            if (row.status == 0)
                between << QString("MOVA_STKSrv_%1() success : %").arg(name);
            QCOMPARE(takeTrace(),
                     lines(main ? "SelectMainMenuItem" : "SelectSubMenuItem", between));
        }
    }

    void details()
    {
        const QString whole(256, QChar('w')), longer(257, QChar('a'));
        modem.notify(MOVA_STKTYPE_GET_INKEY, 33);
        modem.playTone = {-8, 0xFFFF, {}};
        modem.inKey = {{}, 3, 1, 0xFFFF};
        modem.input = {{}, 2, 1, -1, 300, 0, {}};
        modem.put(modem.idleText.szText, whole);
        modem.put(modem.playTone.szText, longer);
        modem.put(modem.inKey.szText, "<GO-BACKWARDS>");
        modem.put(modem.input.szText, whole);
        modem.put(modem.input.szDefaultText, whole);

        QString text;
        QVERIFY(logic->GetIdleModePrompt(&text));
        QCOMPARE(text, whole);
        MOVAPlayToneRequest tone = {0, 0, ""};
        QVERIFY(logic->GetPlayTone(&tone));
        QCOMPARE(QString("%1 %2 ").arg(tone.nTone).arg(tone.nDuration) + tone.strText,
                 "-8 65535 " + longer);
        StkInKeyRequest key = {"", 0, 0, 0, 77, 78, 79, "kept"};
        QVERIFY(logic->GetInKeyRquest(&key));
        QCOMPARE(fields(key), QString("<GO-BACKWARDS> 3 1 65535 77 78 79 kept"));
        StkInKeyRequest input = {"", 0, 1, 77, 0, 0, 0, ""};
        QVERIFY(logic->GetInputRequest(&input));
        QCOMPARE(fields(input), whole + " 2 0 77 1 -1 300 " + whole);
    }

    void invalidValuesLeaveTheFieldAlone()
    {
        modem.put(modem.launchBrowser.szUrl, "http://a");
        for (int mode : {1, 4, -1, 0, 2, 3}) {
            modem.launchBrowser.nLaunchMode = mode;
            MOVALaunchBrowser browser = {42, ""};
            QVERIFY(logic->GetLaunchBrowser(&browser));
            QCOMPARE(browser.nLaunchMode, mode == 0 || mode == 2 || mode == 3 ? mode : 42);
            QCOMPARE(browser.strUrl, QString("http://a"));
        }
        modem.inKey.nInputType = modem.input.nInputType = 4;
        modem.inKey.bOption = modem.input.bOption = 2;
        modem.input.bEcho = -1;
        StkInKeyRequest request = {"", 42, 43, 0, 44, 0, 0, ""};
        QVERIFY(logic->GetInKeyRquest(&request) && logic->GetInputRequest(&request));
        QCOMPARE(fields(request), QString(" 42 43 0 44 0 0 "));
        for (int clearMode : {5, 0}) {
            QString text, mode;
            int duration = 0;
            modem.promptText.nClearMode = clearMode;
            modem.promptText.usDuration = 65535;
            QVERIFY(logic->GetPromptText(&text, &mode, &duration));
            QCOMPARE(mode, QString(clearMode ? "" : "STK_CLR_MODE_AUTO"));
            QCOMPARE(duration, 65535);
        }
    }

    /* Every getter and answer: what it writes, calls, returns and leaves alone. */
    void detailsAndAnswers()
    {
        const QString smile = QString::fromUtf8("a\xF0\x9F\x98\x80");
        QString text, mode;
        int duration;
        MOVAPlayToneRequest tone;
        MOVALaunchBrowser browser;
        StkInKeyRequest request;
        const struct {
            const char *function, *service, *calling, *success;
            QString arguments;
            std::function<bool()> act;
        } rows[] = {
            {"GetIdleModePrompt", "GetIdleModePrompt", "Calling $(): %", "SDK success %", "",
             [&] { return logic->GetIdleModePrompt(&text); }},
            {"GetPlayTone", "GetPlayTone", "Calling $(): %", "SDK success %", "",
             [&] { return logic->GetPlayTone(&tone); }},
            {"GetLaunchBrowser", "GetLaunchBrowser", "Calling $(): %", "SDK success %", "",
             [&] { return logic->GetLaunchBrowser(&browser); }},
            {"GetInKeyRquest", "GetInKeyRequest", "Calling $(): %", "SDK success %", "",
             [&] { return logic->GetInKeyRquest(&request); }},
            {"GetInputRequest", "GetInputRequest", "Calling $(): %", "SDK success %", "",
             [&] { return logic->GetInputRequest(&request); }},
            {"GetPromptText", "GetPromptText", "Calling  $() %", nullptr, "",
             [&] { return logic->GetPromptText(&text, &mode, &duration); }},
            {"GetRefreshInfo", "GetRefreshInfo", "Calling  $() %", "$() success: %", "",
             [&] { return logic->GetRefreshInfo(); }},
            {"CallStkAnswerInKey", "AnswerInKey", "Calling $(1): %", "$() success: %", ",1,1",
             [&] { return logic->CallStkAnswerInKey("STK_TYPE_OK", "1"); }},
            {"CallStkAnswerInKey", "AnswerInKey", "Calling $(): %", "$() success: %", ",0,",
             [&] { return logic->CallStkAnswerInKey("STK_TYPE_CANCEL", ""); }},
            {"CallStkAnswerInput", "AnswerInput", "Calling $(&): %", "$() success: %", ",1,&",
             [&] { return logic->CallStkAnswerInput("STK_TYPE_OK", smile); }},
            {"CallStkAnswerInput", "AnswerInput", "Calling $(x): %", "$() success: %", ",0,x",
             [&] { return logic->CallStkAnswerInput("stk_type_ok", "x"); }},
            {"SendNoDataResponse", "SendNoDataResponse", "Calling $(): %",
             "MOVA return success : %", ",4,4",
             [&] {
                 return logic->SendNoDataResponse(MOVA_STKTYPE_SETUP_CALL, STK_UI_TR_NOT_SUPPORTED);
             }},
        };
        modem.notify(MOVA_STKTYPE_GET_INPUT, 12);
        modem.takeCalls();
        for (const auto &row : rows) {
            const QString service = QString("MOVA_STKSrv_") + row.service;
            // The text's answer shares this line with the key's.
            const QString returned = QString(service).replace("AnswerInput", "AnswerInKey");
            for (int status : {0, -6}) {
                text = mode = "kept";
                duration = 42;
                tone = {42, 42, "kept"};
                browser = {42, "kept"};
                request = {"kept", 42, 42, 42, 42, 42, 42, "kept"};
                modem.status[row.service] = status;
                takeTrace();
                QVERIFY2(row.act() == (status == 0), row.function);
                QStringList between({row.calling, returned + "() returned @: %"});
                if (status == 0 && row.success)
                    between << row.success;
                between.replaceInStrings("@", QString::number(status))
                    .replaceInStrings("$", service)
                    .replaceInStrings("&", smile);
                QCOMPARE(takeTrace(), lines(row.function, between, status == 0));
                QCOMPARE(calls(),
                         QString("%1(12%2)")
                             .arg(row.service, QString(row.arguments).replace("&", smile)));
                if (status != 0) {
                    QCOMPARE(text + mode + tone.strText + browser.strUrl,
                             QString("kept").repeated(4));
                    QCOMPARE(duration + tone.nTone + tone.nDuration + browser.nLaunchMode, 4 * 42);
                    QCOMPARE(fields(request), QString("kept 42 42 42 42 42 42 kept"));
                }
            }
        }
    }
};

QTEST_MAIN(TestSTKLogic)
#include "TestSTKLogic.moc"
