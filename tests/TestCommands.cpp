#include "PluginTest.h"

#include <functional>

#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTimer>

#include "platform/ClipMessageBox.h"
#include "platform/ClipSound.h"

#define FILE_NAME "../../src/STKPlugin/STKDialog"

struct TextRow {
    int clearMode, duration, ticks;
    QString way;
    int response;
};
Q_DECLARE_METATYPE(TextRow)

struct ToneRow {
    QStringList files;
    QString failing, played, trace;
    bool handled;
};
Q_DECLARE_METATYPE(ToneRow)

struct CommandRow {
    int type;
    QString failing;
    QStringList calls;
    bool handled;
    QString trace;
};
Q_DECLARE_METATYPE(CommandRow)

/* Each proactive command from the callback to the answer, and every way to leave it. */
class TestCommands : public PluginTest {
    Q_OBJECT

    /* The window over the toolkit, null for none. */
    static QDialog *box()
    {
        QDialog *const top = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        return top && top->objectName() != "STKPlugin_Stkdialog" ? top : nullptr;
    }
    static QAbstractButton *boxButton(const QString &text)
    {
        for (QAbstractButton *button : box()->findChildren<QAbstractButton *>()) {
            if (button->text().startsWith(text))
                return button;
        }
        return nullptr;
    }

    static void setVerdict(bool handled) { STKLogic::CreateInstance()->UpdateCBReturnVal(handled); }

    /* Sends the command and does that inside the event loop of its window, if it opens one.  The
     * verdict is false until the handler says otherwise. */
    void present(
        int type, int cmdId, const std::function<void()> &act = [] {})
    {
        modem.notify(type, cmdId);
        QTimer::singleShot(0, this, [=] { // posted behind the command
            const bool up = box();
            if (up)
                setVerdict(true); // of whatever comes before this one's
            act();
            if (up)
                setVerdict(false);
        });
        setVerdict(false);
        deliver();
        QCoreApplication::processEvents();
    }

    static void leave(const QString &way)
    {
        if (way == "close")
            box()->close();
        else if (way == "escape")
            QTest::keyClick(box(), Qt::Key_Escape);
        else
            boxButton("LuminePlugin:" + way)->click();
    }

    QStringList answers() { return modem.takeCalls().filter(QRegularExpression("^(Answer|Send)")); }

    /* What a handler reported shows in what the next notification brings. */
    bool verdict()
    {
        modem.takeCalls();
        modem.notify(55, 999);
        const bool handled = modem.takeCalls().isEmpty();
        deliver();
        setVerdict(true);
        return handled;
    }

    void putText(const QString &text, int clearMode, int duration)
    {
        modem.promptText = {{}, clearMode, static_cast<uint16_t>(duration)};
        modem.put(modem.promptText.szText, text);
    }

    QTemporaryDir libraries;
    QString tone(const QString &name) const
    {
        return libraries.path() + "/plugins/STKPlugin/" + name;
    }

    void putTones(const QStringList &names)
    {
        ui.libraryPath = libraries.path();
        QVERIFY(QDir(tone("")).removeRecursively() && QDir().mkpath(tone("")));
        for (const QString &name : names)
            QVERIFY(QFile(tone(name)).open(QIODevice::WriteOnly));
    }

    /* The intervals of the running timers. */
    static QList<int> ticking(STKDialog *dialog)
    {
        QList<int> intervals;
        for (QTimer *timer : dialog->findChildren<QTimer *>()) {
            if (timer->isActive())
                intervals << timer->interval();
        }
        return intervals;
    }

private slots:
    void displayText_data()
    {
        QTest::addColumn<TextRow>("row");
        QTest::newRow("OK") << TextRow{1, 0, 0, "IDS_OK", 1};
        QTest::newRow("Cancel") << TextRow{1, 9, 0, "IDS_CANCEL", 0};
        QTest::newRow("title bar") << TextRow{5, 0, 0, "close", 0};
        QTest::newRow("escape") << TextRow{1, 0, 0, "escape", 0};
        QTest::newRow("countdown, OK") << TextRow{0, 5, 2, "IDS_OK", 1};
        QTest::newRow("countdown, Cancel") << TextRow{0, 5, 2, "IDS_CANCEL", 0};
        QTest::newRow("countdown, title bar") << TextRow{0, 5, 4, "close", 0};
        QTest::newRow("clears itself") << TextRow{0, 5, 5, "", 1};
        QTest::newRow("clears itself after one") << TextRow{0, 1, 1, "", 1};
        QTest::newRow("clears itself after three by default") << TextRow{0, 0, 3, "", 1};
    }

    void displayText()
    {
        QFETCH(TextRow, row);
        STKDialog *const dialog = show();
        const int seconds = row.duration ? row.duration : 3;
        putText("<b>x</b> <GO-BACKWARDS>", row.clearMode, row.duration);
        for (int round = 0; round < 2; ++round) { // a second text starts from the beginning
            present(MOVA_STKTYPE_DISPLAY_TEXT, 31, [&] {
                QMessageBox *const message = box()->findChild<QMessageBox *>();
                QCOMPARE(message->text(), QString("<b>x</b> <GO-BACKWARDS>"));
                QCOMPARE(box()->windowTitle(), QString());
                QCOMPARE(box()->windowModality(), Qt::WindowModal);
                QCOMPARE(message->buttonRole(boxButton("LuminePlugin:IDS_OK")),
                         QMessageBox::YesRole);
                QCOMPARE(message->defaultButton(), boxButton("LuminePlugin:IDS_CANCEL"));
                QVERIFY(message->windowFlags() & Qt::FramelessWindowHint);
                // The frame of a message takes its size, and no other.
                emit static_cast<ClipMessageBox *>(message)->changeSize(QSize(234, 123));
                QCOMPARE(box()->size(), QSize(234, 123));
                QCOMPARE(box()->minimumSize(), box()->maximumSize());
                QCOMPARE(ui.beeps, round + 1);
                QCOMPARE(ticking(dialog), row.clearMode == 0 ? QList<int>{1000} : QList<int>());
                for (int tick = 0; tick < row.ticks; ++tick) {
                    const QPointer<QAbstractButton> ok = boxButton("LuminePlugin:IDS_OK");
                    QVERIFY(dialog->m_pTimeMsgDlg->isVisible());
                    dialog->onMessageTimeOut();
                    QCOMPARE(ok->text(), QString("LuminePlugin:IDS_OK = %1").arg(seconds - tick));
                }
                if (!row.way.isEmpty())
                    leave(row.way);
            });
            QVERIFY(!dialog->m_pTimeMsgDlg);
            QCOMPARE(answers(),
                     QStringList(QString("SendNoDataResponse(31,1,%1)").arg(row.response)));
            QVERIFY(verdict());
        }
        dialog->onMessageTimeOut();
        QVERIFY(
            takeTrace().last().startsWith("Arg is NULL: TIME: " FILE_NAME ": onMessageTimeOut "));
    }

    void aTextThatCannotBeShown()
    {
        show();
        modem.status["GetPromptText"] = -1;
        present(MOVA_STKTYPE_DISPLAY_TEXT, 1, [] { QVERIFY(!box()); });
        QCOMPARE(answers(), QStringList());
        QVERIFY(!verdict()); // nothing was reported
        modem.status.clear();
        modem.status["SendNoDataResponse"] = -1;
        present(MOVA_STKTYPE_DISPLAY_TEXT, 2, [] { leave("IDS_OK"); });
        QVERIFY(takeTrace().contains("SendNoDataResponse Failed " FILE_NAME
                                     ": onSTKDisplayText: TIME: "));
        QVERIFY(verdict());
        frame()->close(); // no window, no shared timer
        putText("x", 0, 1);
        modem.status.clear();
        present(MOVA_STKTYPE_DISPLAY_TEXT, 3, [] { QVERIFY(!box()); });
        QCOMPARE(answers(), QStringList());
        QVERIFY(!verdict());
    }

    void aSecondTextIsRefused()
    {
        STKDialog *const dialog = show();
        putText("first", 0, 5);
        present(MOVA_STKTYPE_DISPLAY_TEXT, 1, [&] {
            dialog->onMessageTimeOut();
            const QPointer<QDialog> first = box();
            putText("second", 1, 0);
            modem.status["SendNoDataResponse"] = -1;
            takeTrace();
            present(MOVA_STKTYPE_DISPLAY_TEXT, 2);
            modem.status.clear();
            const QStringList trace = takeTrace().filter("onSTKDisplayText");
            QCOMPARE(
                trace.mid(1),
                QStringList({"SendNoDataResponse Failed " FILE_NAME ": onSTKDisplayText: TIME: ",
                             "End of " FILE_NAME ": onSTKDisplayText: TIME: "}));
            QCOMPARE(answers(), QStringList("SendNoDataResponse(2,1,0)"));
            QCOMPARE(box(), first.data());
            QCOMPARE(first->findChild<QMessageBox *>()->text(), QString("first"));
            dialog->onMessageTimeOut();
            QVERIFY(boxButton("LuminePlugin:IDS_OK = 4"));
            leave("IDS_OK");
        });
        QCOMPARE(answers(), QStringList("SendNoDataResponse(1,1,1)"));
    }

    /* Two of a type in the queue: both slots find the newer one, which is answered once.  A notice
     * behind it changes nothing. */
    void twoInTheQueue_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("answer");
        QTest::newRow("text") << 1 << "SendNoDataResponse(4,1,1)";
        QTest::newRow("key") << 2 << "AnswerInKey(4,1,7)";
        QTest::newRow("yes-no") << -2 << "AnswerInKey(4,1,1)";
        QTest::newRow("input") << 3 << "AnswerInput(4,1,7)";
        QTest::newRow("call") << 4 << "SendNoDataResponse(4,4,4)";
        QTest::newRow("tone") << 5 << "SendNoDataResponse(4,5,1)";
        QTest::newRow("browser") << 11 << "SendNoDataResponse(4,11,1)";
        QTest::newRow("idle text") << 12 << "SendNoDataResponse(4,12,1)";
    }

    void twoInTheQueue()
    {
        QFETCH(int, type);
        QFETCH(QString, answer);
        putTones({"tone_8"});
        show();
        ui.messageAnswer = QMessageBox::NoButton;
        modem.input.sMaxLen = 1;
        modem.inKey.nInputType = type < 0 ? 1 : 0;
        putText("text", 1, 0);
        enum { Before, Behind, Inside };
        for (int notice : {Before, Behind, Inside}) {
            if (notice == Inside) // between the details and the answer, and changes neither
                modem.duringDetails = [this] { modem.notify(MOVA_STKTYPE_SEND_SMS, 5); };
            else
                modem.notify(qAbs(type), notice == Before ? 3 : 4);
            const bool behind = notice == Behind;
            present(behind ? MOVA_STKTYPE_SEND_SMS : qAbs(type), behind ? 5 : 4, [type] {
                if (type > 3)
                    return;
                if (QLineEdit *const line = box()->findChild<QLineEdit *>()) {
                    QTest::keyClick(line, Qt::Key_7);
                    boxButton("STKPlugin:IDS_STK_BTN_OK")->click();
                } else if (type < 0) {
                    box()->accept();
                } else {
                    leave("IDS_OK");
                }
            });
            QCOMPARE(answers().filter("(4,"), QStringList(answer));
            QCOMPARE(isBusy(), type < 4 && type != 1); // the wait is owed, whatever came meanwhile
            QVERIFY(verdict());
            QTRY_VERIFY(!isBusy());
        }
    }

    /* The wait for the card is the newer question's. */
    void aNewerQuestionTakesTheWait_data() { addRows("older", {"key", "yes-no", "input"}); }
    void aNewerQuestionTakesTheWait()
    {
        QFETCH(QString, older);
        show();
        ui.messageAnswer = QMessageBox::NoButton;
        modem.inKey.nInputType = older == "yes-no" ? 1 : 0;
        present(older == "input" ? 3 : 2, 1, [&] {
            const QPointer<QDialog> first = box();
            modem.inKey.nInputType = 0;
            present(older == "input" ? 2 : 3, 2, [&] { box()->close(); });
            QVERIFY(isBusy());
            takeTrace();
            modem.notify(55, 9); // the card's answer to it
            if (first)
                first->close();
        });
        QVERIFY(takeTrace().filter("stkWaitforRespond").isEmpty());
        QVERIFY(STKLogic::CreateInstance()->GetResponseVar());
    }

    void playTone_data()
    {
        const QStringList both({"tone_3", "tone_8"});
        QTest::addColumn<ToneRow>("row");
        QTest::newRow("its own") << ToneRow{both, "", "tone_3", "", true};
        QTest::newRow("the fallback") << ToneRow{{"tone_8"}, "", "tone_8", "", true};
        QTest::newRow("none") << ToneRow{
            {}, "", "", "Sound file does not exists %1: onSTKPlayTone: TIME: ", false};
        QTest::newRow("unreadable") << ToneRow{
            both, "GetPlayTone", "", "GetPlayTone() failed %1: onSTKPlayTone: TIME: ", false};
        QTest::newRow("not playable")
            << ToneRow{both, "Play", "tone_3", "Playing failed %1: playTone: TIME: ", true};
        QTest::newRow("answer refused")
            << ToneRow{both, "SendNoDataResponse", "tone_3",
                       "SendNoDataResponse Failed of %1: onSTKPlayTone: TIME: ", true};
    }

    void playTone()
    {
        QFETCH(ToneRow, row);
        putTones(row.files);
        ui.soundPlays = row.failing != "Play";
        modem.playTone.nTone = 3;
        modem.playTone.usDuration = 60;
        STKDialog *const dialog = show();
        for (int round = 0; round < 2; ++round) { // a second tone replaces the first
            ui.soundsPlayed.clear();
            modem.status[row.failing] = -1;
            present(MOVA_STKTYPE_PLAY_TONE, 6);
            QCOMPARE(answers(),
                     row.handled ? QStringList("SendNoDataResponse(6,5,1)") : QStringList());
            QCOMPARE(ui.soundsPlayed,
                     row.played.isEmpty() ? QStringList() : QStringList(tone(row.played)));
            QVERIFY(row.trace.isEmpty() || takeTrace().contains(row.trace.arg(FILE_NAME)));
            modem.status.remove("SendNoDataResponse");
            QCOMPARE(verdict(), row.handled);
        }
        QCOMPARE(ticking(dialog), row.handled ? QList<int>{60000} : QList<int>());
        if (ui.playing) {
            QPointer<ClipSound> sound = ui.playing;
            if (row.files.size() == 2)
                dialog->onSTKPlayToneTimeOut();
            else
                ui.finishSound();
            QVERIFY(!sound && !ui.playing);
            QCOMPARE(ticking(dialog), QList<int>());
            dialog->onPlayingFinished();
            dialog->onSTKPlayToneTimeOut();
        }
    }

    void aToneWithoutAWindowOrAFile()
    {
        STKDialog *const dialog = STKDialog::Instance();
        modem.takeCalls();
        send(MOVA_STKTYPE_PLAY_TONE, 6);
        QCOMPARE(modem.takeCalls(), QStringList());
        QVERIFY(takeTrace().contains("Logic/timer instance is null " FILE_NAME
                                     ": onSTKPlayTone: TIME: "));
        dialog->playTone("");
        QCOMPARE(takeTrace(),
                 QStringList({"End of " FILE_NAME ": playTone: TIME: ",
                              "Filename is empty of " FILE_NAME ": playTone: TIME: "}));
        dialog->onPlayingFinished();
        QCOMPARE(takeTrace().replaceInStrings(QRegularExpression("\\d+"), "LINE"),
                 QStringList("Start of " FILE_NAME ": onPlayingFinished: LINE: "));
    }

    void yesNo_data()
    {
        addRows("way",
                {"accept", "reject", "time limit", "time limit of another",
                 "time limit, shown again", "answer refused"});
    }
    void yesNo()
    {
        QFETCH(QString, way);
        show();
        ui.messageAnswer = QMessageBox::NoButton;
        modem.inKey = {
            {},
            1,
            0,
            static_cast<uint16_t>(way.contains("limit") && !way.endsWith("another") ? 150 : 0)};
        modem.put(modem.inKey.szText, "<b>Sure?</b>");
        modem.status["AnswerInKey"] = way == "answer refused" ? -1 : 0;
        if (way.endsWith("another")) { // runs on, for the box now; the window stays
            modem.device(6601);
            deliver();
            QCOMPARE(ticking(STKDialog::Instance()), QList<int>{100});
        }
        present(MOVA_STKTYPE_GET_INKEY, 14, [&] {
            QCOMPARE(box()->objectName(), QString("message"));
            if (way.endsWith("again")) {
                frame()->close();
                open();
            }
            if (way.contains("limit"))
                QTRY_VERIFY(!box());
            else
                way == "reject" ? box()->reject() : box()->accept();
        });
        QCOMPARE(ui.messages, QStringList("|<b>Sure?</b>|IDS_YES|IDS_NO||0,1,8000000,1|"));
        QCOMPARE(answers(),
                 QStringList(way[0] == 'a' ? "AnswerInKey(14,1,1)" : "AnswerInKey(14,1,0)"));
        QCOMPARE(isBusy(), way != "answer refused");
        QVERIFY(!isBusy() || takeTrace().filter("Called with TimeOut = 10").size() == 1);
        QVERIFY(frame());
        QCOMPARE(ticking(STKDialog::Instance()), QList<int>());
        QCOMPARE(verdict(), way != "answer refused");
    }

    void inputOnTheMainWindow_data() { addRows("what", {"a key", "a text", "a text of type 1"}); }
    void inputOnTheMainWindow()
    {
        QFETCH(QString, what);
        const int type = what == "a key" ? MOVA_STKTYPE_GET_INKEY : MOVA_STKTYPE_GET_INPUT;
        const QString answer = what == "a key" ? "AnswerInKey" : "AnswerInput";
        show();
        modem.inKey.usDuration = 1;
        modem.input = {{}, what.endsWith("1") ? 1 : 0, 1, 1, 1, 0, {}};
        present(type, 15, [&] {
            for (Qt::Key key : {Qt::Key_7, Qt::Key_Backspace, Qt::Key_7}) {
                QTest::keyClick(box()->findChild<QLineEdit *>(), key);
                QCOMPARE(boxButton("STKPlugin:IDS_STK_BTN_OK")->isEnabled(), key == Qt::Key_7);
            }
            boxButton("STKPlugin:IDS_STK_BTN_OK")->click();
        });
        QCOMPARE(answers(), QStringList(answer + "(15,1,7)"));
        QVERIFY(isBusy());
        QCOMPARE(takeTrace().filter("Called with TimeOut = 10").size(), 1);
        QVERIFY(verdict());
        modem.status["AnswerInKey"] = modem.status["AnswerInput"] = -1;
        QTRY_VERIFY(!isBusy());
        present(type, 16, [] { box()->close(); });
        QVERIFY(!isBusy()); // no answer went out: nothing to wait for
        QVERIFY(verdict());
        modem.status["GetInKeyRequest"] = modem.status["GetInputRequest"] = -1;
        present(type, 17, [] { QVERIFY(!box()); });
        QVERIFY(!verdict());
        QVERIFY(takeTrace().contains(
            what == "a key" ? "GetInKeyRquest faied " FILE_NAME ": onSTKGetInkey: TIME: "
                            : "GetInputRequest failed " FILE_NAME ": onSTKGetInput: TIME: "));
        // A time-out of the card closes the window and answers Cancel.
        modem.status.clear();
        present(type, 18, [this, type] {
            send(type, 18, 1);
            QVERIFY(!box());
        });
        QCOMPARE(answers(), QStringList(answer + "(18,0,)"));
    }

    void commandsWithoutAWindow_data()
    {
        const QString browse("GetLaunchBrowser(9)"), idle("GetIdleModePrompt(9)"),
            none("SendNoDataResponse");
        const QStringList browsed({browse, "SendNoDataResponse(9,11,1)"}),
            idled({idle, "SendNoDataResponse(9,12,1)"});
        const CommandRow rows[] = {
            {12, "", idled, true, ""},
            {12,
             "GetIdleModePrompt",
             {idle},
             false,
             "GetIdleModePrompt() failed %1: onSTKSetupIdleModeText: TIME: "},
            {12, none, idled, true,
             "SendNoDataResponse() failed %1: onSTKSetupIdleModeText: TIME: "},
            {11, "", browsed, true, ""},
            {11, "address", browsed, true, ""},
            {11,
             "GetLaunchBrowser",
             {browse},
             false,
             "GetLaunchBrowser() failed %1: onSTKLaunchBrowser: TIME: "},
            {11, none, browsed, true, "SendNoDataResponse() failed %1: onSTKLaunchBrowser: TIME: "},
            {0, "", mainMenuRead, true, ""},
            {99, "", {}, true, ""},
            {6, "", {"GetSubMenu(9)", "ReleaseSubMenus()"}, true, ""},
            {8, "", {}, true, ""},
            {9, "", {}, true, ""},
            {10, "", {}, true, ""},
            {7, "", {"GetRefreshInfo(9)"}, true, ""},
            {7, "GetRefreshInfo", {"GetRefreshInfo(9)"}, false, ""},
            {4, "", {"SendNoDataResponse(9,4,4)"}, true, ""},
            {4,
             none,
             {"SendNoDataResponse(9,4,4)"},
             false,
             "SendNoDataResponse failed %1: onSTKSetupCall: TIME: "},
        };
        QTest::addColumn<CommandRow>("row");
        for (const CommandRow &row : rows)
            QTest::addRow("type %d, failing: %s", row.type, qPrintable(row.failing)) << row;
    }

    void commandsWithoutAWindow()
    {
        QFETCH(CommandRow, row);
        show();
        modem.put(modem.launchBrowser.szUrl, row.failing == "address" ? "" : "http://a");
        modem.status[row.failing] = -1;
        present(row.type, 9);
        QCOMPARE(modem.takeCalls(), row.calls);
        const bool opens = row.type == 11 && row.handled && row.failing != "address";
        QCOMPARE(ui.openedUrls, opens ? QStringList("http://a") : QStringList());
        QCOMPARE(rows().size(), row.type == 6 ? 2 : 3);
        QVERIFY(!box());
        QVERIFY(row.trace.isEmpty() || takeTrace().contains(row.trace.arg(FILE_NAME)));
        modem.status.clear();
        QCOMPARE(verdict(), row.handled);
        modem.takeCalls();
        modem.status[row.failing] = -1;
        modem.notify(row.type, 9);
        present(MOVA_STKTYPE_SEND_USSD, 10); // a notice behind it, which changes nothing
        QCOMPARE(modem.takeCalls(), row.calls);
    }

    void aTextThatWasLeftUnderAnotherWindowKeepsItsAnswer()
    {
        STKDialog *const dialog = show();
        putText("text", 0, 2);
        present(MOVA_STKTYPE_DISPLAY_TEXT, 1, [&] {
            const QPointer<QDialog> text = box();
            QAbstractButton *const ok = boxButton("LuminePlugin:IDS_OK");
            modem.notify(MOVA_STKTYPE_GET_INPUT, 2);
            QTimer::singleShot(0, this, [&] {
                QVERIFY(box() != text);
                ok->click();
                QVERIFY(!text->isVisible());
                QCOMPARE(ticking(dialog), QList<int>()); // nobody counts any more
                box()->close();
            });
            deliver();
        });
        QCOMPARE(answers(), QStringList({"AnswerInput(2,0,)", "SendNoDataResponse(1,1,1)"}));
    }

    void aToneKeepsItsTimeAcrossShowings()
    {
        putTones({"tone_8"});
        modem.playTone.usDuration = 1;
        STKDialog *const dialog = show();
        for (int id : {1, 2}) {
            present(MOVA_STKTYPE_PLAY_TONE, id);
            frame()->close();
            show();
            if (id == 1)
                QTRY_VERIFY(!ui.playing);
            QCOMPARE(ticking(dialog), id == 1 ? QList<int>() : QList<int>{1000});
        }
        modem.playTone.usDuration = 60; // the old timer must not cut it
        present(MOVA_STKTYPE_PLAY_TONE, 3);
        QCOMPARE(ticking(dialog), QList<int>({60000}));
    }

    /* A text that clears itself takes the timer over, and the window stays. */
    void aTextTakesTheTimerOfTheModem()
    {
        show();
        putText("text", 0, 9);
        modem.device(6601);
        present(MOVA_STKTYPE_DISPLAY_TEXT, 1, [this] {
            QTRY_COMPARE(ticking(STKDialog::Instance()), QList<int>{1000});
            leave("IDS_OK");
        });
        QVERIFY(frame());
    }

    /* Each window crossed with everything that may arrive while it is up. */
    void anythingMayArriveWhileAWindowIsUp_data()
    {
        QTest::addColumn<QString>("window");
        QTest::addColumn<int>("event");
        const int events[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 55, 99, -1, -2, 6601, 6602};
        for (const char *window : {"text", "countdown", "key", "yes-no", "input"}) {
            for (int event : events)
                QTest::addRow("%s, %d", window, event) << window << event;
        }
    }

    void anythingMayArriveWhileAWindowIsUp()
    {
        QFETCH(QString, window);
        QFETCH(int, event);
        putTones({"tone_8"});
        ui.messageAnswer = QMessageBox::NoButton;
        modem.inKey.nInputType = window == "yes-no" ? 1 : 0;
        modem.input.sMaxLen = 4;
        show();
        putText("text", window == "countdown" ? 0 : 1, 30);
        const int type = window == "key" || window == "yes-no" ? 2 : window == "input" ? 3 : 1;
        const QPointer<QDialog> toolkit = frame();
        const auto closeAll = [] {
            while (box()) {
                const QPointer<QDialog> top = box();
                top->close();
                QVERIFY2(!top || !top->isVisible(), "a window that cannot be closed");
            }
        };
        present(type, 1, [&] {
            QVERIFY(box());
            if (event == -2)
                STKDialog::Destroy();
            else if (event >= 6600)
                modem.device(event);
            else if (event == -1)
                modem.notify(type, 1, 1);
            else
                modem.notify(event, 2);
            QTimer::singleShot(0, this, closeAll); // inside the loop of whatever opens on top
            deliver();
            if (event == 6601)
                QTRY_VERIFY(!toolkit || !toolkit->isVisible());
            closeAll();
        });
        closeAll();
        const QStringList calls = answers();
        if (event == -2) { // nobody is left who could answer
            QCOMPARE(calls, QStringList());
            STKLogic::DestroyInst();
            return;
        }
        modem.notify(MOVA_STKTYPE_SETUP_MENU, 3); // ends a wait for the card
        deliver();
        QTRY_VERIFY(!isBusy());
        // Each gets its one answer, whatever window it came under.
        QCOMPARE(calls.filter("(1,").size(), 1);
        QCOMPARE(calls.filter("(2,").size(), QList<int>({1, 2, 3, 4, 5, 11, 12}).count(event));
        // Nothing is left behind, and the toolkit is as good as before.
        deliver();
        deleteClosed();
        for (QWidget *widget : QApplication::topLevelWidgets())
            QVERIFY(!qobject_cast<ExtendDialog *>(widget) || widget == toolkit);
        if (!toolkit)
            show();
        modem.takeCalls();
        clickRow(0);
        QTest::keyClick(table(), Qt::Key_Return);
        QCOMPARE(modem.takeCalls(), QStringList("SelectMenuItem(1,7)"));
    }
};

QTEST_MAIN(TestCommands)
#include "TestCommands.moc"
