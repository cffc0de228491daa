#include "PluginTest.h"

#include <functional>
#include <utility>

#include "TraceLog.h"

#define FILE_NAME "../../src/STKPlugin/STKLogic"

static const bool isFarFromUtc = qputenv("TZ", "XYZ-5:45"); // before anything is traced

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
        const QStringList names = QString("STKSetupMenu STKDisplayText STKGetInkey STKGetInput "
                                          "STKSetupCall STKPlayTone STKSelItem STKRefresh "
                                          "STKSendSMS STKSendSMS STKSendUSSD STKLaunchBrowser "
                                          "STKSetupIdleModeText")
                                      .split(' ');
        for (int type : {0,  1,  2,  3,  4,  5,  6,   7,  8,       9,      10,
                         11, 12, 13, 55, 98, 99, 100, -1, INT_MIN, INT_MAX}) {
            logic->SetResponseVar(false);
            QCOMPARE(modem.notify(type, 4), 0);
            QCOMPARE(emitted().join(" "), type == 99 ? "STKEndSession" : names.value(type));
            QVERIFY(traced(QString("enStkType value is %1, ").arg(type), "stkEventSwitchCase"));
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

    void itsTraceHasTheLocalTime()
    {
        TraceTime();
        const QByteArray again = TraceTime();
        const QTime time = QTime::fromString(again, "hh:mm:ss:zzz");
        QVERIFY2(qAbs(time.msecsTo(QTime::currentTime())) < 1000, again);
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
        QVERIFY(traced("STK TimeOut", "OnSTKEventCB"));
        modem.notify(MOVA_STKTYPE_GET_INPUT, 10, 2);
        QCOMPARE(happened(), QString("STKGetInput ShowMainMenu SendNoDataResponse(10,3,0)"));
        // It stands until a handler changes it, and a failing answer is only traced.
        modem.status["SendNoDataResponse"] = -1;
        modem.notify(MOVA_STKTYPE_SETUP_MENU, 32767);
        QCOMPARE(happened(), QString("STKSetupMenu ShowMainMenu SendNoDataResponse(32767,0,0)"));
        QVERIFY(traced("MOVA_STKSrv_SendNoDataResponse Failed", "OnSTKEventCB"));
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

    void onlyTheStandardsLaunchModesAreTaken()
    {
        for (int mode : {1, 4, -1, 0, 2, 3}) {
            modem.launchBrowser.nLaunchMode = mode;
            MOVALaunchBrowser browser = {42, ""};
            QVERIFY(logic->GetLaunchBrowser(&browser));
            QCOMPARE(browser.nLaunchMode, mode == 0 || mode == 2 || mode == 3 ? mode : 42);
        }
    }

    /* Every getter and answer: what it writes, calls, returns, changes and leaves alone. */
    void detailsAndAnswers()
    {
        const QString smile = QString::fromUtf8("a\xF0\x9F\x98\x80"), whole(256, QChar('w')),
                      longer(257, QChar('a'));
        modem.notify(MOVA_STKTYPE_GET_INPUT, 12);
        modem.playTone = {-8, 0xFFFF, {}};
        modem.promptText.usDuration = 0xFFFF;
        modem.put(modem.launchBrowser.szUrl, "http://a");
        modem.put(modem.playTone.szText, longer);
        for (auto *text : {&modem.idleText.szText, &modem.inKey.szText, &modem.input.szText,
                           &modem.input.szDefaultText, &modem.promptText.szText})
            modem.put(*text, whole);
        QString text, mode;
        int duration;
        MOVAPlayToneRequest tone;
        MOVALaunchBrowser browser;
        StkInKeyRequest request;
        const auto prompt = [&](int clearMode) {
            modem.promptText.nClearMode = clearMode;
            return logic->GetPromptText(&text, &mode, &duration);
        };
        const auto key = [&](int type, int option) {
            modem.inKey.nInputType = type;
            modem.inKey.bOption = option;
            modem.inKey.usDuration = 0xFFFF;
            return logic->GetInKeyRquest(&request);
        };
        const auto input = [&](int type, int echo, int option) {
            modem.input.nInputType = type;
            modem.input.bEcho = echo;
            modem.input.bOption = option;
            modem.input.sMinLen = -1;
            modem.input.sMaxLen = 300;
            return logic->GetInputRequest(&request);
        };
        const auto all = [&] {
            return QStringList(
                {text, mode, QString::number(duration),
                 QString("%1 %2 ").arg(tone.nTone).arg(tone.nDuration) + tone.strText,
                 QString("%1 ").arg(browser.nLaunchMode) + browser.strUrl, fields(request)});
        };
        const char *const colon = "Calling $(): %", *const got = "SDK success %",
                          *const done = "$() success: %";
        const struct {
            const char *function, *calling, *success;
            QString arguments, changed; // W: the whole array
            std::function<bool()> act;
        } rows[] = {
            {"GetIdleModePrompt", colon, got, "", "W",
             [&] { return logic->GetIdleModePrompt(&text); }},
            {"GetPlayTone", colon, got, "", "-8 65535 " + longer,
             [&] { return logic->GetPlayTone(&tone); }},
            {"GetLaunchBrowser", colon, got, "", "0 http://a",
             [&] { return logic->GetLaunchBrowser(&browser); }},
            {"GetInKeyRquest", colon, got, "", "W 3 1 65535 42 42 42 kept",
             [&] { return key(3, 1); }},
            {"GetInKeyRquest", colon, got, "", "W 42 42 65535 42 42 42 kept",
             [&] { return key(4, 2); }},
            {"GetInputRequest", colon, got, "", "W 2 0 42 1 -1 300 W",
             [&] { return input(2, 1, 0); }},
            {"GetInputRequest", colon, got, "", "W 42 42 42 42 -1 300 W",
             [&] { return input(-1, -1, 2); }},
            {"GetPromptText", "Calling  $() %", nullptr, "", "W|STK_CLR_MODE_AUTO|65535",
             [&] { return prompt(0); }},
            {"GetPromptText", "Calling  $() %", nullptr, "", "W||65535", [&] { return prompt(5); }},
            {"GetRefreshInfo", "Calling  $() %", done, "", "",
             [&] { return logic->GetRefreshInfo(); }},
            {"CallStkAnswerInKey", "Calling $(1): %", done, ",1,1", "",
             [&] { return logic->CallStkAnswerInKey("STK_TYPE_OK", "1"); }},
            {"CallStkAnswerInKey", colon, done, ",0,", "",
             [&] { return logic->CallStkAnswerInKey("STK_TYPE_CANCEL", ""); }},
            {"CallStkAnswerInput", "Calling $(&): %", done, ",1,&", "",
             [&] { return logic->CallStkAnswerInput("STK_TYPE_OK", smile); }},
            {"CallStkAnswerInput", "Calling $(x): %", done, ",0,x", "",
             [&] { return logic->CallStkAnswerInput("stk_type_ok", "x"); }},
            {"SendNoDataResponse", colon, "MOVA return success : %", ",4,4", "",
             [&] {
                 return logic->SendNoDataResponse(MOVA_STKTYPE_SETUP_CALL, STK_UI_TR_NOT_SUPPORTED);
             }},
        };
        modem.takeCalls();
        for (const auto &row : rows) {
            const QString name = QString(row.function).remove("CallStk").replace("Rq", "Req");
            const QString service = "MOVA_STKSrv_" + name;
            // The text's answer shares this line with the key's.
            const QString returned = QString(service).replace("AnswerInput", "AnswerInKey");
            for (int status : {0, -6}) {
                text = mode = "kept";
                duration = 42;
                tone = {42, 42, "kept"};
                browser = {42, "kept"};
                request = {"kept", 42, 42, 42, 42, 42, 42, "kept"};
                const QStringList before = all();
                modem.status[name] = status;
                takeTrace();
                QVERIFY2(row.act() == (status == 0), row.function);
                QStringList between({row.calling, returned + "() returned @: %"}), changed;
                if (status == 0 && row.success)
                    between << row.success;
                between.replaceInStrings("@", QString::number(status))
                    .replaceInStrings("$", service)
                    .replaceInStrings("&", smile);
                QCOMPARE(takeTrace(), lines(row.function, between, status == 0));
                QCOMPARE(calls(), name + "(12" + QString(row.arguments).replace("&", smile) + ")");
                for (int i = 0; i < before.size(); ++i) {
                    if (all().at(i) != before[i])
                        changed << all().at(i);
                }
                QCOMPARE(changed.join("|").replace(whole, "W"), status ? "" : row.changed);
            }
        }
    }
};

QTEST_MAIN(TestSTKLogic)
#include "TestSTKLogic.moc"
