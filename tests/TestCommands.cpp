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
            if (QTest::currentTestFailed() && box())
                box()->close(); // or its loop would never end
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
            boxButton("LuminePlugin:IDS_" + way)->click();
    }

    /* 7 into an input, OK or yes to what has none. */
    static void answerBox()
    {
        QDialog *const up = box();
        if (QLineEdit *const line = up->findChild<QLineEdit *>())
            QTest::keyClick(line, Qt::Key_7);
        if (up->objectName() == "message")
            up->accept();
        else
            boxButton(up->findChild<QLineEdit *>() ? "STKPlugin:IDS_STK_BTN_OK"
                                                   : "LuminePlugin:IDS_OK")
                ->click();
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
    /* Clear mode, duration, after how many seconds, how, and the answer. */
    void displayText_data()
    {
        addRows("row",
                {"1 0 0 OK 1", "1 9 0 CANCEL 0", "5 0 0 close 0", "1 0 0 escape 0", "0 5 2 OK 1",
                 "0 5 2 CANCEL 0", "0 5 4 close 0", "0 5 5 itself 1", "0 1 1 itself 1",
                 "0 0 3 itself 1"});
    }
    void displayText()
    {
        QFETCH(QString, row);
        const int clearMode = row.section(' ', 0, 0).toInt(),
                  duration = row.section(' ', 1, 1).toInt(), ticks = row.section(' ', 2, 2).toInt(),
                  seconds = duration ? duration : 3;
        const QString way = row.section(' ', 3, 3);
        STKDialog *const dialog = show();
        putText("<b>x</b> <GO-BACKWARDS>", clearMode, duration);
        for (int round = 0; round < 2; ++round) { // a second text starts from the beginning
            present(MOVA_STKTYPE_DISPLAY_TEXT, 31, [&] {
                auto *const message = box()->findChild<ClipMessageBox *>();
                QCOMPARE(message->text(), QString("<b>x</b> <GO-BACKWARDS>"));
                QCOMPARE(box()->windowTitle(), QString());
                QCOMPARE(box()->windowModality(), Qt::WindowModal);
                QCOMPARE(message->buttonRole(boxButton("LuminePlugin:IDS_OK")),
                         QMessageBox::YesRole);
                QCOMPARE(message->defaultButton(), boxButton("LuminePlugin:IDS_CANCEL"));
                QVERIFY(message->windowFlags() & Qt::FramelessWindowHint);
                // The frame of a message takes its size, and no other.
                emit message->changeSize(QSize(234, 123));
                QCOMPARE(box()->size(), QSize(234, 123));
                QCOMPARE(box()->minimumSize(), box()->maximumSize());
                QCOMPARE(ui.beeps, round + 1);
                QCOMPARE(ticking(dialog), clearMode == 0 ? QList<int>{1000} : QList<int>());
                for (int tick = 0; tick < ticks; ++tick) {
                    const QPointer<QAbstractButton> ok = boxButton("LuminePlugin:IDS_OK");
                    QVERIFY(dialog->m_pTimeMsgDlg->isVisible());
                    dialog->onMessageTimeOut();
                    QCOMPARE(ok->text(), QString("LuminePlugin:IDS_OK = %1").arg(seconds - tick));
                }
                if (way != "itself")
                    leave(way);
            });
            QVERIFY(!dialog->m_pTimeMsgDlg);
            QCOMPARE(answers(),
                     QStringList(QString("SendNoDataResponse(31,1,%1)").arg(row.right(1))));
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
        present(MOVA_STKTYPE_DISPLAY_TEXT, 2, [] { leave("OK"); });
        QVERIFY(traced("SendNoDataResponse Failed", "onSTKDisplayText"));
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
            QCOMPARE(takeTrace().filter("onSTKDisplayText").join("").section(FILE_NAME, 1),
                     QString(": onSTKDisplayText: TIME: SendNoDataResponse Failed " FILE_NAME
                             ": onSTKDisplayText: TIME: End of " FILE_NAME
                             ": onSTKDisplayText: TIME: "));
            QCOMPARE(answers(), QStringList("SendNoDataResponse(2,1,0)"));
            QCOMPARE(box(), first.data());
            QCOMPARE(first->findChild<QMessageBox *>()->text(), QString("first"));
            dialog->onMessageTimeOut();
            QVERIFY(boxButton("LuminePlugin:IDS_OK = 4"));
            leave("OK");
        });
        QCOMPARE(answers(), QStringList("SendNoDataResponse(1,1,1)"));
    }

    /* Two of a type in the queue: both slots find the newer one, which is answered once.  A notice
     * behind it changes nothing. */
    void twoInTheQueue_data()
    {
        addRows("answer",
                {"SendNoDataResponse(4,1,1)", "AnswerInKey(4,1,7)", "AnswerInKey(4,1,1)",
                 "AnswerInput(4,1,7)", "SendNoDataResponse(4,4,4)", "SendNoDataResponse(4,5,1)",
                 "SendNoDataResponse(4,11,1)", "SendNoDataResponse(4,12,1)"});
    }

    void twoInTheQueue()
    {
        QFETCH(QString, answer);
        const bool yesNo = answer == "AnswerInKey(4,1,1)";
        const int type = answer.startsWith("AnswerInKey") ? 2
            : answer.startsWith("AnswerInput")            ? 3
                                                          : answer.section(',', 1, 1).toInt();
        putTones({"tone_8"});
        show();
        ui.messageAnswer = QMessageBox::NoButton;
        modem.input.sMaxLen = 1;
        modem.inKey.nInputType = yesNo;
        putText("text", 1, 0);
        enum { Before, Behind, Inside };
        for (int notice : {Before, Behind, Inside}) {
            if (notice == Inside) // between the details and the answer, and changes neither
                modem.duringDetails = [this] { modem.notify(MOVA_STKTYPE_SEND_SMS, 5); };
            else
                modem.notify(type, notice == Before ? 3 : 4);
            const bool behind = notice == Behind;
            present(behind ? MOVA_STKTYPE_SEND_SMS : type, behind ? 5 : 4, [=] {
                if (type < 4)
                    answerBox();
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
        addRows(
            "way",
            {"its own", "the fallback", "no file", "GetPlayTone", "Play", "SendNoDataResponse"});
    }
    void playTone()
    {
        QFETCH(QString, way); // or what fails
        const QHash<QString, QString> lines = {
            {"no file", "Sound file does not exists"},
            {"GetPlayTone", "GetPlayTone() failed"},
            {"Play", "Playing failed"},
            {"SendNoDataResponse", "SendNoDataResponse Failed of"}};
        const QString file = way == "the fallback" ? "tone_8" : "tone_3";
        const bool handled = way != "no file" && way != "GetPlayTone";
        putTones(way == "no file" ? QStringList() : QStringList({file, "tone_8"}));
        ui.soundPlays = way != "Play";
        modem.playTone.nTone = 3;
        modem.playTone.usDuration = 60;
        STKDialog *const dialog = show();
        for (int round = 0; round < 2; ++round) { // a second tone replaces the first
            ui.soundsPlayed.clear();
            modem.status[way] = -1;
            present(MOVA_STKTYPE_PLAY_TONE, 6);
            QCOMPARE(answers().join(" "), handled ? "SendNoDataResponse(6,5,1)" : "");
            QCOMPARE(ui.soundsPlayed.join(" "), handled ? tone(file) : "");
            QVERIFY(!lines.contains(way) ||
                    traced(lines[way], way == "Play" ? "playTone" : "onSTKPlayTone"));
            modem.status.remove("SendNoDataResponse");
            QCOMPARE(verdict(), handled);
        }
        QCOMPARE(ticking(dialog), handled ? QList<int>{60000} : QList<int>());
        if (!ui.playing)
            return;
        QPointer<ClipSound> sound = ui.playing;
        if (way == "its own")
            dialog->onSTKPlayToneTimeOut();
        else
            ui.finishSound();
        QVERIFY(!sound && !ui.playing);
        QCOMPARE(ticking(dialog), QList<int>());
        dialog->onPlayingFinished();
        dialog->onSTKPlayToneTimeOut();
    }

    void aToneWithoutAWindowOrAFile()
    {
        STKDialog *const dialog = STKDialog::Instance();
        modem.takeCalls();
        send(MOVA_STKTYPE_PLAY_TONE, 6);
        QCOMPARE(calls(), QString());
        QVERIFY(traced("Logic/timer instance is null", "onSTKPlayTone"));
        dialog->playTone("");
        QCOMPARE(takeTrace(),
                 QStringList({"End of " FILE_NAME ": playTone: TIME: ",
                              "Filename is empty of " FILE_NAME ": playTone: TIME: "}));
        dialog->onPlayingFinished();
        QCOMPARE(takeTrace().size(), 1); // its start alone
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
        modem.inKey.nInputType = 1;
        modem.inKey.usDuration = way.contains("limit") && !way.endsWith("another") ? 150 : 0;
        modem.put(modem.inKey.szText, "<b>Sure?</b>");
        modem.status["AnswerInKey"] = way == "answer refused" ? -1 : 0;
        if (way.endsWith("another")) { // runs on, for the box now; the window stays
            modem.device(6601);
            deliver();
            QCOMPARE(ticking(STKDialog::Instance()), QList<int>{100});
        }
        present(MOVA_STKTYPE_GET_INKEY, 14, [&] {
            QCOMPARE(box()->objectName(), QString("message"));
            QCOMPARE(ticking(STKDialog::Instance()).size(), way.contains("limit") ? 1 : 0);
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
        QCOMPARE(answers().join(" "), QString("AnswerInKey(14,1,%1)").arg(way[0] == 'a'));
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
            for (Qt::Key key : {Qt::Key_7, Qt::Key_Backspace}) {
                QTest::keyClick(box()->findChild<QLineEdit *>(), key);
                QCOMPARE(boxButton("STKPlugin:IDS_STK_BTN_OK")->isEnabled(), key == Qt::Key_7);
            }
            answerBox();
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
        QVERIFY(what == "a key" ? traced("GetInKeyRquest faied", "onSTKGetInkey")
                                : traced("GetInputRequest failed", "onSTKGetInput"));
        // A time-out of the card closes the window and answers Cancel.
        modem.status.clear();
        present(type, 18, [this, type] {
            send(type, 18, 1);
            QVERIFY(!box());
        });
        QCOMPARE(answers(), QStringList(answer + "(18,0,)"));
    }

    void commandsWithoutAWindow()
    {
        const QString idle("GetIdleModePrompt(9)"), browse("GetLaunchBrowser(9)"),
            none("SendNoDataResponse");
        const QString idled = idle + " SendNoDataResponse(9,12,1)",
                      browsed = browse + " SendNoDataResponse(9,11,1)";
        const struct {
            int type;
            QString failing, calls, trace = QString();
            bool handled = true;
        } table[] = {
            {12, "", idled},
            {12, "GetIdleModePrompt", idle, "SetupIdleModeText: GetIdleModePrompt() failed", false},
            {12, none, idled, "SetupIdleModeText: SendNoDataResponse() failed"},
            {11, "", browsed},
            {11, "address", browsed},
            {11, "GetLaunchBrowser", browse, "LaunchBrowser: GetLaunchBrowser() failed", false},
            {11, none, browsed, "LaunchBrowser: SendNoDataResponse() failed"},
            {4, "", "SendNoDataResponse(9,4,4)"},
            {4, none, "SendNoDataResponse(9,4,4)", "SetupCall: SendNoDataResponse failed", false},
            {0, "", "GetMainMenu() ReleaseMenus()"},
            {6, "", "GetSubMenu(9) ReleaseSubMenus()"},
            {7, "", "GetRefreshInfo(9)"},
            {7, "GetRefreshInfo", "GetRefreshInfo(9)", "", false},
            {8, "", ""},
            {9, "", ""},
            {10, "", ""},
            {99, "", ""},
        };
        for (const auto &row : table) {
            init();
            show();
            modem.put(modem.launchBrowser.szUrl, row.failing == "address" ? "" : "http://a");
            modem.status[row.failing] = -1;
            present(row.type, 9);
            QCOMPARE(calls(), row.calls);
            const bool opens = row.type == 11 && row.handled && row.failing != "address";
            QCOMPARE(ui.openedUrls.join(" "), opens ? "http://a" : "");
            QCOMPARE(rows().size(), row.type == 6 ? 2 : 3);
            QVERIFY(!box());
            const QStringList trace = row.trace.split(": ");
            QVERIFY(row.trace.isEmpty() || traced(trace[1], "onSTK" + trace[0]));
            modem.status.clear();
            QCOMPARE(verdict(), row.handled);
            modem.takeCalls();
            modem.status[row.failing] = -1;
            modem.notify(row.type, 9);
            present(MOVA_STKTYPE_SEND_USSD, 10); // a notice behind it, which changes nothing
            QCOMPARE(calls(), row.calls);
            setVerdict(false);
            STKDialog::Instance()->onSTKSendSS(); // which no notification brings
            QVERIFY(verdict());
            cleanup();
        }
    }

    void aTextThatWasLeftUnderAnotherWindowKeepsItsAnswer()
    {
        STKDialog *const dialog = show();
        putText("text", 0, 9);
        modem.device(6601); // the text takes its timer over, and the toolkit stays
        present(MOVA_STKTYPE_DISPLAY_TEXT, 1, [&] {
            QTRY_COMPARE(ticking(dialog), QList<int>{1000});
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
        QVERIFY(frame());
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
