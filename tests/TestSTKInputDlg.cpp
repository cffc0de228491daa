#include "PluginTest.h"

#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QTextEdit>
#include <QTimer>
#include <functional>

#include "STKInputDlg.h"

#define FILE_NAME "../../src/STKPlugin/STKInputDlg"

/* What is done to the line under which rules, and what becomes of it.  Control characters are the
 * keys with Ctrl, but for Backspace, \v for Home, and \t for what an input method enters. */
struct LineRow {
    int type, min, max;
    QString before, keys, clipboard, text;
    bool enabled;
};
Q_DECLARE_METATYPE(LineRow)

/* A way out of the window, with what the service gets of it. */
struct WayOut {
    bool refusedBefore; /* OK is pressed first, and refused */
    void (*leave)();
    QString answers; /* "%" stands for the function and the command */
    int error;
};
Q_DECLARE_METATYPE(WayOut)

/* The input window, driven from inside its own event loop. */
class TestSTKInputDlg : public PluginTest {
    Q_OBJECT

    STKInputDlg *dialog;

    static STKInputDlg *instance() { return STKInputDlg::StkInputDlgInstance(); }
    static ExtendDialog *window()
    {
        return qobject_cast<ExtendDialog *>(QApplication::activeModalWidget());
    }
    template <typename Widget> static Widget *child(const char *name)
    {
        return window()->findChild<Widget *>(name);
    }
    static QLineEdit *line() { return child<QLineEdit>("STKPlugin_LineEditInput"); }
    static QPushButton *ok() { return child<QPushButton>("STKPlugin _PushBtnOk"); }
    static QPushButton *cancel() { return child<QPushButton>("STKPlugin _PushBtnCancel"); }

    /* Shows the window, does that inside it, and fails the test if it is then still open. */
    void showAnd(const std::function<void()> &act)
    {
        QTimer::singleShot(0, this, [act] {
            act();
            if (window()) {
                QTest::qFail("the window did not close", __FILE__, __LINE__);
                delete window();
            }
        });
        dialog->ShowStkInputDlg(nullptr);
        QVERIFY(!dialog->IsDialogCreated());
    }

    static StkInKeyRequest input(int type, int echo, int min, int max,
                                 const QString &text = QString())
    {
        return StkInKeyRequest{"Prompt", type, 0, 0, echo, min, max, text};
    }

private slots:
    void init()
    {
        PluginTest::init();
        dialog = instance();
        QVERIFY(dialog == instance());
    }

    void cleanup()
    {
        STKInputDlg::DestroyInstance();
        STKInputDlg::DestroyInstance();
        PluginTest::cleanup();
    }

    void theSlotsAndNothingElse()
    {
        QCOMPARE(
            methodsOf(STKInputDlg::staticMetaObject),
            QString(
                "onButtonClickOk() onButtonClickCancel() onTextEdited(QString) onTimerTimeOut()"));
    }

    void theWindowIsBuiltAsItShould()
    {
        dialog->SetInputRequest(StkInKeyRequest{"<img src=x> & <b>", 0, 0, 0, 1, 0, 20, "start"});
        showAnd([this] {
            QCOMPARE(window()->objectName(), QString("STKPlugin _StkInputDlg"));
            QVERIFY(child<QWidget>("STKPlugin _StkInputWidget"));
            QCOMPARE(window()->size(), QSize(261, 170));
            QCOMPARE(window()->windowModality(), Qt::WindowModal);
            QCOMPARE(window()->windowTitle(), QString());
            QLabel *const label = child<QLabel>("STKPlugin_LabelText");
            QCOMPARE(label->text(), QString("<img src=x> & <b>"));
            QCOMPARE(label->textFormat(), Qt::PlainText);
            QCOMPARE(label->width(), 240);
            QVERIFY(label->wordWrap());
            QCOMPARE(line()->size(), QSize(240, 22));
            QCOMPARE(line()->text(), QString("start"));
            QCOMPARE(ok()->text(), QString("STKPlugin:IDS_STK_BTN_OK"));
            QCOMPARE(cancel()->text(), QString("STKPlugin:IDS_STK_BTN_CANCEL"));
            QVERIFY(!ok()->isEnabled());
            QCOMPARE(QWidget::keyboardGrabber(), line());
            QVERIFY(dialog->IsDialogCreated());
            cancel()->click();
        });
        QVERIFY(!QWidget::keyboardGrabber());
        const QStringList trace = takeTrace();
        for (const char *text :
             {"Start  of %1setInitSetting: TIME: ", "Start  of %1setStkInputUiLayout: TIME: ",
              "End  of %1setStkInputUiLayout: TIME: ", "Start  of %1SetStkInputUiText: TIME: ",
              "Start of %1setStkInputObjectName: TIME: ", "End  of %1setStkInputObjectName: TIME: ",
              "TIME : " FILE_NAME " : closeEvent : Entered", "End  of %1initUI: TIME: ",
              "TIME : " FILE_NAME " : closeEvent : Exit", "End of %1ShowStkInputDlg: TIME: "})
            QVERIFY2(trace.contains(QString(text).replace("%1", FILE_NAME ": ")), text);
        QCOMPARE(trace.count("End  of " FILE_NAME ": setInitSetting: TIME: "), 2);
    }

    void rulesOfTheLine_data()
    {
        QTest::addColumn<LineRow>("row");
        const QString pair = QString::fromUtf8("📱");
        const auto row = [](const char *name, const LineRow &row) { QTest::newRow(name) << row; };
        row("any text", {0, 1, 10, "", "aB 1", "", "aB 1", true});
        row("digits", {2, 1, 20, "", "a1b2*+#-Z9", "", "12*+#9", true});
        row("type 1 is no digits", {1, 0, 5, "", "abc", "", "abc", true});
        row("one too few", {0, 3, 9, "", "ab", "", "ab", false});
        row("just enough", {0, 3, 9, "", "abc", "", "abc", true});
        row("no more than the maximum", {0, 1, 2, "", "abc", "", "ab", true});
        row("the default alone", {0, 0, 9, "42", "", "", "42", false});
        row("emptied again", {0, 0, 9, "", "a\b", "", "", true});
        row("negative minimum", {0, -1, 9, "", "a", "", "a", true});
        row("undone", {2, 1, 9, "", "12\x1a", "", "", false});
        row("undone, nothing needed", {0, 0, 9, "", "12\x1a", "", "", true});
        row("refused key", {2, 1, 9, "42", "a", "", "42", false});
        row("refused key, selection", {2, 1, 9, "42", "\x01z", "", "42", false});
        row("the same again", {0, 1, 1, "x", "\x01x", "", "x", true});
        row("pasted", {2, 1, 9, "42", "\v\x16#", "1 a3", "13#42", true});
        row("pasted, all refused", {2, 1, 9, "42", "\v\x16", "abc", "42", false});
        row("pasted over, all refused", {2, 1, 9, "42", "\x01\x16", "abc", "42", false});
        row("pasted over", {2, 1, 9, "42", "\x01\x16", "a1b", "1", true});
        row("input method", {2, 3, 9, "42", "\v\t", "a3b", "342", true});
        row("no half character", {0, 1, 1, "", "\x16", pair, "", false});
        row("half over a whole one", {0, 1, 1, "4", "\x16", pair, "4", false});
        row("cut in a character", {0, 1, 3, "", "ab\x16", pair, "ab", true});
        row("whole character", {0, 3, 4, "", "ab\x16", pair, "ab" + pair, true});
        row("default cut in a character", {0, 0, 2, "x" + pair, "", "", "x", false});
    }

    static void press(QChar key)
    {
        const QHash<QChar, Qt::Key> named = {{'\b', Qt::Key_Backspace}, {'\v', Qt::Key_Home}};
        if (key == '\t') {
            QInputMethodEvent event;
            event.setCommitString(QApplication::clipboard()->text());
            QApplication::sendEvent(line(), &event);
        } else if (named.contains(key)) {
            QTest::keyClick(line(), named[key]);
        } else if (key < ' ') {
            QTest::keyClick(line(), Qt::Key('@' + key.unicode()), Qt::ControlModifier);
        } else {
            QTest::keyClick(line(), key.toLatin1());
        }
    }

    void rulesOfTheLine()
    {
        QFETCH(LineRow, row);
        for (int echo : {1, 0}) {
            QApplication::clipboard()->setText(row.clipboard);
            dialog->SetInputRequest(input(row.type, echo, row.min, row.max, row.before));
            showAnd([&] {
                for (const QChar key : row.keys)
                    press(key);
                QCOMPARE(line()->text(), row.text);
                QCOMPARE(line()->echoMode(), echo ? QLineEdit::Normal : QLineEdit::Password);
                QCOMPARE(ok()->isEnabled(), row.enabled);
                cancel()->click();
            });
        }
    }

    void waysOut_data()
    {
        const auto clickOk = [] { ok()->click(); };
        const auto clickCancel = [] { cancel()->click(); };
        const auto close = [] { window()->close(); };
        QTest::addColumn<WayOut>("way");
        QTest::newRow("ok") << WayOut{false, clickOk, "%1,7)", 0};
        QTest::newRow("Return") << WayOut{false, [] { QTest::keyClick(line(), Qt::Key_Return); },
                                          "%1,7)", 0};
        QTest::newRow("cancel") << WayOut{false, clickCancel, "%0,)", 0};
        QTest::newRow("escape") << WayOut{false, [] { QTest::keyClick(line(), Qt::Key_Escape); },
                                          "%0,)", 0};
        QTest::newRow("title bar") << WayOut{false, close, "%0,)", 0};
        QTest::newRow("from the main window")
            << WayOut{false, [] { instance()->CloseDlg(); }, "%0,)", 0};
        QTest::newRow("time-out") << WayOut{false, [] { instance()->onTimerTimeOut(); }, "%0,)", 0};
        QTest::newRow("ok refused, then cancel") << WayOut{true, clickCancel, "%1,7) %0,)", -1};
        QTest::newRow("ok refused, then title bar") << WayOut{true, close, "%1,7)", -1};
        QTest::newRow("ok refused, then ok") << WayOut{true, clickOk, "%1,7) %1,7)", 0};
    }

    void waysOut()
    {
        QFETCH(WayOut, way);
        STKLogic::RegisterSTKCB();
        modem.notify(MOVA_STKTYPE_GET_INPUT, 44);
        QCOMPARE(dialog->GetLastError(), -1);
        // Twice: what one window left behind must not touch the next.
        for (const QString call : {"AnswerInput", "AnswerInKey", "AnswerInput", "AnswerInKey"}) {
            if (call == "AnswerInKey")
                dialog->SetInKeyRequest(input(0, 0, 9, 9));
            else
                dialog->SetInputRequest(input(0, 1, 1, 1));
            modem.takeCalls();
            ui.messages.clear();
            showAnd([&] {
                QTest::keyClick(line(), '7');
                if (way.refusedBefore) {
                    modem.status[call] = -1;
                    ok()->click();
                    QCOMPARE(ui.messages.join("\n"),
                             "STKPlugin:IDS_STK_MSG_PROMPT|STKPlugin:IDS_STK_MSG_INPUTFAILED|IDS_"
                             "OK|||1,1,8000000,1|");
                    QVERIFY(window());
                    modem.status[call] = way.error;
                }
                way.leave();
            });
            QCOMPARE(calls(), QString(way.answers).replace("%", call + "(44,"));
            QCOMPARE(dialog->GetLastError(), way.error);
        }
    }

    void aKeyStartsFromTheLastDefaultText()
    {
        dialog->SetInputRequest(input(2, 0, 1, 9, "42"));
        dialog->SetInKeyRequest(StkInKeyRequest{"Key", 2, 0, 60, 0, 0, 9, "ignored"});
        showAnd([this] {
            QCOMPARE(line()->text(), QString("4"));
            QCOMPARE(line()->echoMode(), QLineEdit::Normal);
            QVERIFY(!ok()->isEnabled());
            QVERIFY(takeTrace().filter("onTimerTimeOut").isEmpty());
            // An answer time runs only in a window that is there.
            dialog->SetInKeyRequest(StkInKeyRequest{"Key", 0, 0, 30, 0, 0, 9, ""});
            for (QTimer *timer : dialog->findChildren<QTimer *>())
                QVERIFY(!timer->isActive() || timer->interval() == 1000);
            QTRY_VERIFY(!dialog->IsDialogCreated());
            QVERIFY(!takeTrace().filter("onTimerTimeOut").isEmpty());
        });
    }

    void withoutAWindowNothingIsSent()
    {
        dialog->CloseDlg();
        QVERIFY(dialog->GetBtnClicked());
        QVERIFY(takeTrace().contains("Logic Instance/ widget is NULL " FILE_NAME
                                     ": onButtonClickCancel: TIME: "));
        dialog->onButtonClickOk();
        dialog->onTextEdited("x");
        dialog->setInitSetting();
        dialog->SetStkInputUiText();
        dialog->setStkInputObjectName();
        const QStringList trace = takeTrace();
        for (const char *text :
             {"Logic Instance/Widget is NULL " FILE_NAME ": onButtonClickOk: TIME: ",
              "Memory is null " FILE_NAME ": onTextEdited: TIME: ",
              "Arg is NULL: TIME: " FILE_NAME ": setInitSetting",
              "UI widget is null  of " FILE_NAME ": SetStkInputUiText: TIME: ",
              "Memory is null  " FILE_NAME ": setStkInputObjectName: TIME: "})
            QVERIFY2(trace.contains(text), text);
        QCOMPARE(modem.takeCalls(), QStringList());
    }

    void aLongPromptScrolls()
    {
        for (const QString &prompt :
             {QString("ten chars ").repeated(24), QString(60, QChar('W')), QString("short")}) {
            dialog->SetInputRequest(StkInKeyRequest{prompt, 0, 0, 0, 1, 0, 9, ""});
            showAnd([prompt] {
                QTextEdit *const view = child<QTextEdit>("STKPlugin_PromptView");
                QCOMPARE(view != nullptr, prompt != "short");
                QVERIFY2(child<QLabel>("STKPlugin_LabelText")->isHidden() == (view != nullptr),
                         "one of them is shown");
                if (view) {
                    QCOMPARE(view->toPlainText(), prompt);
                    QVERIFY(view->verticalScrollBar()->maximum() > 0 || !prompt.contains(' '));
                    QVERIFY(view->geometry().bottom() < line()->geometry().top());
                }
                cancel()->click();
            });
        }
    }

    void theFrameMayDieWithItsParent()
    {
        QWidget *const parent = new QWidget;
        parent->show();
        QTimer::singleShot(0, this, [parent] { delete parent; });
        dialog->ShowStkInputDlg(parent);
        QVERIFY(!dialog->IsDialogCreated());
        dialog->CloseDlg();
    }
};

QTEST_MAIN(TestSTKInputDlg)
#include "TestSTKInputDlg.moc"
