#include "PluginTest.h"

#include <functional>

#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTimer>

#include "platform/ClipSound.h"

#define FILE_NAME "../../src/STKPlugin/STKDialog"

/* Each proactive command from the callback to the answer, and every way to leave it. */
class TestCommands : public PluginTest
{
    Q_OBJECT

    /* The window over the toolkit, null for none. */
    static QDialog *box()
    {
        QDialog *const top = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        return top && top->objectName() != "STKPlugin_Stkdialog" ? top : nullptr;
    }
    static QAbstractButton *boxButton(const QString &text)
    {
        const QList<QAbstractButton *> buttons = box()->findChildren<QAbstractButton *>();
        for (QAbstractButton *button : buttons) {
            if (button->text().startsWith(text))
                return button;
        }
        return nullptr;
    }

    /* Sends the command and does that inside the event loop of its window, if it opens one. */
    void present(int type, int cmdId, const std::function<void()> &act)
    {
        modem.notify(type, cmdId);
        QTimer::singleShot(0, this, act); // posted behind the command
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
        STKLogic::CreateInstance()->UpdateCBReturnVal(true);
        return handled;
    }

    void putText(const QString &text, int clearMode, int duration)
    {
        FakeModemService::put(modem.promptText.szText, text);
        modem.promptText.nClearMode = clearMode;
        modem.promptText.usDuration = static_cast<uint16_t>(duration);
    }

private slots:
    void displayText_data()
    {
        QTest::addColumn<int>("clearMode");
        QTest::addColumn<int>("duration");
        QTest::addColumn<int>("ticks");
        QTest::addColumn<QString>("way");
        QTest::addColumn<QString>("answer");
        const auto row = [](const char *name, int mode, int duration, int ticks, const char *way,
                            int response) {
            QTest::newRow(name) << mode << duration << ticks << way
                                << QString("SendNoDataResponse(31,1,%1)").arg(response);
        };
        row("OK", 1, 0, 0, "IDS_OK", 1);
        row("Cancel", 1, 9, 0, "IDS_CANCEL", 0);
        row("title bar", 5, 0, 0, "close", 0);
        row("escape", 1, 0, 0, "escape", 0);
        row("countdown, OK", 0, 5, 2, "IDS_OK", 1);
        row("countdown, Cancel", 0, 5, 2, "IDS_CANCEL", 0);
        row("countdown, title bar", 0, 5, 4, "close", 0);
        row("clears itself", 0, 5, 5, "", 1);
        row("clears itself after one", 0, 1, 1, "", 1);
        row("clears itself after three by default", 0, 0, 3, "", 1);
    }

    void displayText()
    {
        QFETCH(int, clearMode);
        QFETCH(int, duration);
        QFETCH(int, ticks);
        QFETCH(QString, way);
        QFETCH(QString, answer);
        STKDialog *const dialog = show();
        putText("<b>x</b> <GO-BACKWARDS>", clearMode, duration);
        const int seconds = duration ? duration : 3;
        for (int round = 0; round < 2; ++round) { // a second text starts from the beginning
            present(MOVA_STKTYPE_DISPLAY_TEXT, 31, [&] {
                QMessageBox *const message = box()->findChild<QMessageBox *>();
                QCOMPARE(message->text(), QString("<b>x</b> <GO-BACKWARDS>"));
                QCOMPARE(box()->windowTitle(), QString());
                QCOMPARE(box()->windowModality(), Qt::WindowModal);
                QCOMPARE(message->buttonRole(boxButton("LuminePlugin:IDS_OK")), QMessageBox::YesRole);
                QCOMPARE(message->defaultButton(), boxButton("LuminePlugin:IDS_CANCEL"));
                QTimer *countdown = nullptr;
                for (QTimer *timer : dialog->findChildren<QTimer *>())
                    countdown = timer->isActive() ? timer : countdown;
                QCOMPARE(countdown != nullptr, clearMode == 0);
                if (countdown)
                    QCOMPARE(countdown->interval(), 1000);
                for (int tick = 0; tick < ticks; ++tick) {
                    const QPointer<QAbstractButton> ok = boxButton("LuminePlugin:IDS_OK");
                    QVERIFY(dialog->m_pTimeMsgDlg->isVisible());
                    dialog->onMessageTimeOut();
                    QCOMPARE(ok->text(), QString("LuminePlugin:IDS_OK = %1").arg(seconds - tick));
                }
                if (!way.isEmpty())
                    leave(way);
            });
            QVERIFY(!dialog->m_pTimeMsgDlg);
            QCOMPARE(answers(), QStringList(answer));
            QVERIFY(verdict());
        }
        dialog->onMessageTimeOut();
        QVERIFY(takeTrace().last().startsWith("Arg is NULL: TIME: " FILE_NAME ": onMessageTimeOut "));
    }

    void aTextThatCannotBeShown()
    {
        show();
        modem.status["GetPromptText"] = -1;
        present(MOVA_STKTYPE_DISPLAY_TEXT, 1, [] { QVERIFY(!box()); });
        QCOMPARE(answers(), QStringList());
        QVERIFY(verdict()); // nothing was reported
        modem.status.clear();
        modem.status["SendNoDataResponse"] = -1;
        present(MOVA_STKTYPE_DISPLAY_TEXT, 2, [] { leave("IDS_OK"); });
        QVERIFY(takeTrace().contains("SendNoDataResponse Failed " FILE_NAME ": onSTKDisplayText: TIME: "));
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
            modem.notify(MOVA_STKTYPE_DISPLAY_TEXT, 2);
            deliver();
            QCOMPARE(answers(), QStringList("SendNoDataResponse(2,1,0)"));
            QVERIFY(verdict());
            QCOMPARE(box(), first.data());
            QCOMPARE(first->findChild<QMessageBox *>()->text(), QString("first"));
            dialog->onMessageTimeOut();
            QVERIFY(boxButton("LuminePlugin:IDS_OK = 4"));
            leave("IDS_OK");
        });
        QCOMPARE(answers(), QStringList("SendNoDataResponse(1,1,1)"));
        // Two before the first was presented: the card knows the newer alone, and it is shown once.
        modem.notify(MOVA_STKTYPE_DISPLAY_TEXT, 3);
        present(MOVA_STKTYPE_DISPLAY_TEXT, 4, [] { leave("IDS_OK"); });
        QCOMPARE(answers(), QStringList("SendNoDataResponse(4,1,1)"));
    }

    void playTone_data()
    {
        QTest::addColumn<QStringList>("files");
        QTest::addColumn<QString>("failing");
        QTest::addColumn<QString>("played");
        QTest::addColumn<QStringList>("answer");
        QTest::addColumn<bool>("handled");
        QTest::addColumn<QString>("trace");
        const QStringList success("SendNoDataResponse(6,5,1)");
        const QStringList both({"tone_3", "tone_8"});
        QTest::newRow("its own") << both << "" << "tone_3" << success << true << "";
        QTest::newRow("the fallback") << QStringList("tone_8") << "" << "tone_8" << success << true << "";
        QTest::newRow("none") << QStringList() << "" << "" << QStringList() << false
                              << "Sound file does not exists " FILE_NAME ": onSTKPlayTone: TIME: ";
        QTest::newRow("unreadable") << both << "GetPlayTone" << "" << QStringList() << false
                                    << "GetPlayTone() failed " FILE_NAME ": onSTKPlayTone: TIME: ";
        QTest::newRow("not playable") << both << "Play" << "tone_3" << success << true
                                      << "Playing failed " FILE_NAME ": playTone: TIME: ";
        QTest::newRow("answer refused") << both << "SendNoDataResponse" << "tone_3" << success << true
                                        << "SendNoDataResponse Failed of " FILE_NAME ": onSTKPlayTone: TIME: ";
    }

    void playTone()
    {
        QFETCH(QStringList, files);
        QFETCH(QString, failing);
        QFETCH(QString, played);
        QFETCH(QStringList, answer);
        QFETCH(bool, handled);
        QFETCH(QString, trace);
        QTemporaryDir folder;
        QDir(folder.path()).mkpath("plugins/STKPlugin");
        for (const QString &name : files)
            QVERIFY(QFile(folder.path() + "/plugins/STKPlugin/" + name).open(QIODevice::WriteOnly));
        ui.libraryPath = folder.path();
        ui.soundPlays = failing != "Play";
        modem.playTone.nTone = 3;
        modem.playTone.usDuration = 60;
        STKDialog *const dialog = show();
        modem.status[failing.toStdString()] = -1;
        for (int round = 0; round < 2; ++round) { // a second tone replaces the first
            ui.soundsPlayed.clear();
            modem.notify(MOVA_STKTYPE_PLAY_TONE, 6);
            deliver();
            QCOMPARE(answers(), answer);
            QCOMPARE(ui.soundsPlayed.join(" "),
                     played.isEmpty() ? QString() : folder.path() + "/plugins/STKPlugin/" + played);
            if (!trace.isEmpty())
                QVERIFY(takeTrace().contains(trace));
            modem.status.erase("SendNoDataResponse");
            QCOMPARE(verdict(), handled);
            modem.status[failing.toStdString()] = -1;
        }
        const auto ticking = [dialog] {
            int count = 0;
            for (QTimer *timer : dialog->findChildren<QTimer *>())
                count += timer->isActive() && timer->interval() == 60000;
            return count;
        };
        QCOMPARE(ticking(), played.isEmpty() ? 0 : 1);
        if (ui.playing) {
            QPointer<ClipSound> sound = ui.playing;
            if (files.size() == 2)
                dialog->onSTKPlayToneTimeOut();
            else
                ui.finishSound();
            QVERIFY(!sound && !ui.playing);
            QCOMPARE(ticking(), 0);
            dialog->onPlayingFinished();
            dialog->onSTKPlayToneTimeOut();
        }
    }

    void aToneWithoutAWindowOrAFile()
    {
        STKDialog *const dialog = STKDialog::Instance();
        modem.takeCalls();
        modem.notify(MOVA_STKTYPE_PLAY_TONE, 6);
        deliver();
        QCOMPARE(modem.takeCalls(), QStringList());
        QVERIFY(takeTrace().contains("Logic/timer instance is null " FILE_NAME ": onSTKPlayTone: TIME: "));
        dialog->playTone("");
        QCOMPARE(takeTrace(), QStringList({"End of " FILE_NAME ": playTone: TIME: ",
                                           "Filename is empty of " FILE_NAME ": playTone: TIME: "}));
        dialog->onPlayingFinished();
        const QStringList trace = takeTrace();
        QCOMPARE(trace.size(), 1);
        QVERIFY(QRegularExpression("^Start of " FILE_NAME ": onPlayingFinished: \\d+: $")
                    .match(trace[0]).hasMatch());
    }

    void yesNo_data()
    {
        QTest::addColumn<QString>("way");
        QTest::addColumn<int>("duration");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("answer");
        QTest::newRow("yes") << "accept" << 0 << 0 << "AnswerInKey(14,1,1)";
        QTest::newRow("no") << "reject" << 0 << 0 << "AnswerInKey(14,1,0)";
        QTest::newRow("time limit") << "time" << 50 << 0 << "AnswerInKey(14,1,0)";
        QTest::newRow("answer refused") << "accept" << 0 << -1 << "AnswerInKey(14,1,1)";
    }

    void yesNo()
    {
        QFETCH(QString, way);
        QFETCH(int, duration);
        QFETCH(int, status);
        QFETCH(QString, answer);
        show();
        ui.messageAnswer = 0;
        modem.inKey.nInputType = 1;
        modem.inKey.usDuration = static_cast<uint16_t>(duration);
        FakeModemService::put(modem.inKey.szText, "<b>Sure?</b>");
        modem.status["AnswerInKey"] = status;
        present(MOVA_STKTYPE_GET_INKEY, 14, [&] {
            QCOMPARE(box()->objectName(), QString("message"));
            if (way == "time")
                QTRY_VERIFY(!box());
            else
                QMetaObject::invokeMethod(box(), way.toLatin1());
        });
        QCOMPARE(ui.messages, QStringList("|<b>Sure?</b>|IDS_YES|IDS_NO|"));
        QCOMPARE(answers(), QStringList(answer));
        QCOMPARE(isBusy(), status == 0);
        QCOMPARE(verdict(), status == 0);
    }

    void inputOnTheMainWindow_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("inputType");
        QTest::addColumn<QString>("answer");
        QTest::newRow("a key") << int(MOVA_STKTYPE_GET_INKEY) << 0 << "AnswerInKey(15,1,7)";
        QTest::newRow("a text") << int(MOVA_STKTYPE_GET_INPUT) << 0 << "AnswerInput(15,1,7)";
        QTest::newRow("a text of type 1") << int(MOVA_STKTYPE_GET_INPUT) << 1 << "AnswerInput(15,1,7)";
    }

    void inputOnTheMainWindow()
    {
        QFETCH(int, type);
        QFETCH(int, inputType);
        QFETCH(QString, answer);
        show();
        modem.inKey.nInputType = modem.input.nInputType = inputType;
        modem.inKey.usDuration = 1;
        modem.input.bEcho = 1;
        modem.input.sMinLen = modem.input.sMaxLen = 1;
        present(type, 15, [&] {
            QTest::keyClick(box()->findChild<QLineEdit *>(), Qt::Key_7);
            boxButton("STKPlugin:IDS_STK_BTN_OK")->click();
        });
        QCOMPARE(answers(), QStringList(answer));
        QVERIFY(isBusy());
        QVERIFY(verdict());
        modem.status["AnswerInKey"] = modem.status["AnswerInput"] = -1;
        QTRY_VERIFY(!isBusy());
        present(type, 16, [] { box()->close(); });
        QVERIFY(!isBusy()); // no answer went out: nothing to wait for
        QVERIFY(verdict());
        modem.status["GetInKeyRequest"] = modem.status["GetInputRequest"] = -1;
        present(type, 17, [] { QVERIFY(!box()); });
        QVERIFY(!verdict());
        const QString trace = takeTrace().join("\n");
        QVERIFY(trace.contains("GetInKeyRquest faied " FILE_NAME ": onSTKGetInkey: TIME: ")
                || trace.contains("GetInputRequest failed " FILE_NAME ": onSTKGetInput: TIME: "));
        // A time-out of the card closes the window and answers Cancel.
        modem.status.clear();
        present(type, 18, [this, type] {
            modem.notify(type, 18, 1);
            deliver();
            QVERIFY(!box());
        });
        QCOMPARE(answers(), QStringList(answer.left(11) + "(18,0,)"));
    }

    void commandsWithoutAWindow_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("failing");
        QTest::addColumn<QStringList>("calls");
        QTest::addColumn<QStringList>("urls");
        QTest::addColumn<bool>("handled");
        QTest::addColumn<QString>("trace");
        const QStringList none;
        QTest::newRow("idle text") << 12 << "" << QStringList({"GetIdleModePrompt(9)", "SendNoDataResponse(9,12,1)"})
                                   << none << true << "";
        QTest::newRow("idle text unreadable") << 12 << "GetIdleModePrompt" << QStringList("GetIdleModePrompt(9)") << none
                                              << false << "GetIdleModePrompt() failed %1: onSTKSetupIdleModeText: TIME: ";
        QTest::newRow("idle text refused") << 12 << "SendNoDataResponse"
                                           << QStringList({"GetIdleModePrompt(9)", "SendNoDataResponse(9,12,1)"}) << none
                                           << true << "SendNoDataResponse() failed %1: onSTKSetupIdleModeText: TIME: ";
        const QStringList browser({"GetLaunchBrowser(9)", "SendNoDataResponse(9,11,1)"});
        QTest::newRow("browser") << 11 << "" << browser << QStringList("http://a") << true << "";
        QTest::newRow("browser without address") << 11 << "address" << browser << none << true << "";
        QTest::newRow("browser unreadable") << 11 << "GetLaunchBrowser" << QStringList("GetLaunchBrowser(9)") << none
                                            << false << "GetLaunchBrowser() failed %1: onSTKLaunchBrowser: TIME: ";
        QTest::newRow("browser refused") << 11 << "SendNoDataResponse" << browser << QStringList("http://a") << true
                                         << "SendNoDataResponse() failed %1: onSTKLaunchBrowser: TIME: ";
        for (int type : {8, 9, 10})
            QTest::addRow("type %d", type) << type << "" << none << none << true << "";
        QTest::newRow("refresh") << 7 << "" << QStringList("GetRefreshInfo(9)") << none << true << "";
        QTest::newRow("refresh unreadable") << 7 << "GetRefreshInfo" << QStringList("GetRefreshInfo(9)") << none << false
                                            << "";
        QTest::newRow("call") << 4 << "" << QStringList("SendNoDataResponse(9,4,4)") << none << true << "";
        QTest::newRow("call refused") << 4 << "SendNoDataResponse" << QStringList("SendNoDataResponse(9,4,4)") << none
                                      << false << "SendNoDataResponse failed %1: onSTKSetupCall: TIME: ";
    }

    void commandsWithoutAWindow()
    {
        QFETCH(int, type);
        QFETCH(QString, failing);
        QFETCH(QStringList, calls);
        QFETCH(QStringList, urls);
        QFETCH(bool, handled);
        QFETCH(QString, trace);
        show();
        FakeModemService::put(modem.launchBrowser.szUrl, failing == "address" ? "" : "http://a");
        modem.status[failing.toStdString()] = -1;
        modem.notify(type, 9);
        deliver();
        QCOMPARE(modem.takeCalls(), calls);
        QCOMPARE(ui.openedUrls, urls);
        QCOMPARE(rows(), QStringList({"Account", "Banking", "News"}));
        QVERIFY(!box());
        if (!trace.isEmpty())
            QVERIFY(takeTrace().contains(trace.arg(FILE_NAME)));
        modem.status.clear();
        QCOMPARE(verdict(), handled);
    }

    /* Each window crossed with everything that may arrive while it is up. */
    void anythingMayArriveWhileAWindowIsUp_data()
    {
        QTest::addColumn<QString>("window");
        QTest::addColumn<int>("event");
        const int events[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 55, 99, -1, 6601, 6602};
        for (const char *window : {"text", "countdown", "key", "yes-no", "input"}) {
            for (int event : events)
                QTest::addRow("%s, %d", window, event) << window << event;
        }
    }

    void anythingMayArriveWhileAWindowIsUp()
    {
        QFETCH(QString, window);
        QFETCH(int, event);
        QTemporaryDir folder;
        QDir(folder.path()).mkpath("plugins/STKPlugin");
        QVERIFY(QFile(folder.path() + "/plugins/STKPlugin/tone_8").open(QIODevice::WriteOnly));
        ui.libraryPath = folder.path();
        ui.messageAnswer = 0;
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
            if (event >= 6600)
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
        modem.notify(MOVA_STKTYPE_SETUP_MENU, 3); // ends a wait for the card
        deliver();
        QTRY_VERIFY(!isBusy());
        for (int id : {1, 2}) {
            const QStringList own = calls.filter(QString("(%1,").arg(id));
            QVERIFY2(own.size() <= 1, qPrintable(own.join(" ")));
            if (id == 1 && event != 99)
                QCOMPARE(own.size(), 1); // the card is not left waiting
        }
        // Nothing is left behind, and the toolkit is as good as before.
        deliver();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
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
