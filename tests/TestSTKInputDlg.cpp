#include "PluginTest.h"

#include <QLabel>
#include <QLineEdit>
#include <QTimer>
#include <functional>

#include "STKInputDlg.h"

#define FILE_NAME "../../src/STKPlugin/STKInputDlg"

/* The input window, driven from inside its own event loop. */
class TestSTKInputDlg : public PluginTest
{
    Q_OBJECT

    STKInputDlg *dialog;

    static ExtendDialog *window() { return qobject_cast<ExtendDialog *>(QApplication::activeModalWidget()); }
    template <typename Widget>
    static Widget *child(const char *name) { return window()->findChild<Widget *>(name); }
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

    static StkInKeyRequest input(int type, int echo, int min, int max, const QString &text = QString())
    {
        return StkInKeyRequest{"Prompt", type, 0, 0, echo, min, max, text};
    }

private slots:
    void init()
    {
        PluginTest::init();
        dialog = STKInputDlg::StkInputDlgInstance();
        QVERIFY(dialog == STKInputDlg::StkInputDlgInstance());
    }

    void cleanup()
    {
        STKInputDlg::DestroyInstance();
        STKInputDlg::DestroyInstance();
        PluginTest::cleanup();
    }

    void theSlotsAndNothingElse()
    {
        const QMetaObject &meta = STKInputDlg::staticMetaObject;
        QStringList names;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            names << meta.method(i).methodSignature();
        QCOMPARE(names.join(" "), QString("onButtonClickOk() onButtonClickCancel() onTextEdited(QString) onTimerTimeOut()"));
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
        for (const char *text : {"Start  of " FILE_NAME ": setInitSetting: TIME: ",
                                 "Start  of " FILE_NAME ": setStkInputUiLayout: TIME: ",
                                 "End  of " FILE_NAME ": setStkInputUiLayout: TIME: ",
                                 "Start  of " FILE_NAME ": SetStkInputUiText: TIME: ",
                                 "Start of " FILE_NAME ": setStkInputObjectName: TIME: ",
                                 "End  of " FILE_NAME ": setStkInputObjectName: TIME: ",
                                 "End  of " FILE_NAME ": initUI: TIME: ",
                                 "TIME : " FILE_NAME " : closeEvent : Entered",
                                 "TIME : " FILE_NAME " : closeEvent : Exit",
                                 "End of " FILE_NAME ": ShowStkInputDlg: TIME: "})
            QVERIFY2(trace.contains(text), text);
        QCOMPARE(trace.count("End  of " FILE_NAME ": setInitSetting: TIME: "), 2);
    }

    void rulesOfTheLine_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("min");
        QTest::addColumn<int>("max");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("enabled");
        QTest::newRow("any text") << 0 << 1 << 10 << "aB 1" << "aB 1" << true;
        QTest::newRow("digits") << 2 << 1 << 20 << "a1b2*+#-Z9" << "12*+#9" << true;
        QTest::newRow("type 1 is no digits") << 1 << 0 << 5 << "abc" << "abc" << true;
        QTest::newRow("one too few") << 0 << 3 << 9 << "ab" << "ab" << false;
        QTest::newRow("just enough") << 0 << 3 << 9 << "abc" << "abc" << true;
        QTest::newRow("no more than the maximum") << 0 << 1 << 2 << "abc" << "ab" << true;
        QTest::newRow("nothing typed") << 0 << 0 << 9 << "" << "" << false;
        QTest::newRow("emptied again") << 0 << 0 << 9 << "a\b" << "" << true;
        QTest::newRow("negative minimum") << 0 << -1 << 9 << "a" << "a" << true;
    }

    void rulesOfTheLine()
    {
        QFETCH(int, type);
        QFETCH(int, min);
        QFETCH(int, max);
        QFETCH(QString, typed);
        QFETCH(QString, text);
        QFETCH(bool, enabled);
        for (int echo : {1, 0}) {
            dialog->SetInputRequest(input(type, echo, min, max));
            showAnd([&] {
                for (const QChar key : typed)
                    key == '\b' ? QTest::keyClick(line(), Qt::Key_Backspace)
                                : QTest::keyClick(line(), key.toLatin1());
                QCOMPARE(line()->text(), text);
                QCOMPARE(line()->echoMode(), echo ? QLineEdit::Normal : QLineEdit::Password);
                QCOMPARE(ok()->isEnabled(), enabled);
                cancel()->click();
            });
        }
    }

    void waysOut_data()
    {
        QTest::addColumn<QString>("way");
        QTest::addColumn<QStringList>("answers");
        QTest::addColumn<int>("error");
        QTest::newRow("ok") << "ok" << QStringList("1,7") << 0;
        QTest::newRow("Return") << "return" << QStringList("1,7") << 0;
        QTest::newRow("cancel") << "cancel" << QStringList("0,") << 0;
        QTest::newRow("escape") << "escape" << QStringList("0,") << 0;
        QTest::newRow("title bar") << "title bar" << QStringList("0,") << 0;
        QTest::newRow("from the main window") << "closeDlg" << QStringList("0,") << 0;
        QTest::newRow("time-out") << "timer" << QStringList("0,") << 0;
        QTest::newRow("ok refused, then cancel") << "refused cancel" << QStringList({"1,7", "0,"}) << -1;
        QTest::newRow("ok refused, then title bar") << "refused title bar" << QStringList("1,7") << -1;
        QTest::newRow("ok refused, then ok") << "refused ok" << QStringList({"1,7", "1,7"}) << 0;
    }

    void waysOut()
    {
        QFETCH(QString, way);
        QFETCH(QStringList, answers);
        QFETCH(int, error);
        STKLogic::RegisterSTKCB();
        modem.notify(MOVA_STKTYPE_GET_INPUT, 44);
        QCOMPARE(dialog->GetLastError(), -1);
        for (int round = 0; round < 2; ++round) { // what one window left behind must not touch the next
            for (bool inkey : {false, true}) {
                const QString call = inkey ? "AnswerInKey" : "AnswerInput";
                if (inkey)
                    dialog->SetInKeyRequest(input(0, 0, 9, 9));
                else
                    dialog->SetInputRequest(input(0, 1, 1, 1));
                modem.takeCalls();
                ui.messages.clear();
                modem.status.clear();
                showAnd([&] {
                    QTest::keyClick(line(), '7');
                    if (way.startsWith("refused")) {
                        modem.status[call.toStdString()] = -1;
                        ok()->click();
                        QCOMPARE(ui.messages, QStringList("STKPlugin:IDS_STK_MSG_PROMPT|STKPlugin:IDS_STK_MSG_INPUTFAILED"
                                                          "|IDS_OK||"));
                        QVERIFY(window());
                        if (way == "refused ok")
                            modem.status.clear();
                    }
                    if (way.endsWith("ok"))
                        ok()->click();
                    else if (way == "return")
                        QTest::keyClick(line(), Qt::Key_Return);
                    else if (way.endsWith("cancel"))
                        cancel()->click();
                    else if (way == "escape")
                        QTest::keyClick(line(), Qt::Key_Escape);
                    else if (way.endsWith("title bar"))
                        window()->close();
                    else if (way == "closeDlg")
                        dialog->CloseDlg();
                    else if (way == "timer")
                        dialog->onTimerTimeOut();
                });
                QStringList expected;
                for (const QString &answer : answers)
                    expected << QString("%1(44,%2)").arg(call, answer);
                QCOMPARE(modem.takeCalls(), expected);
                QCOMPARE(dialog->GetLastError(), error);
            }
        }
    }

    void aKeyStartsFromTheLastDefaultText()
    {
        dialog->SetInputRequest(input(2, 0, 1, 9, "42"));
        dialog->SetInKeyRequest(StkInKeyRequest{"Key", 2, 0, 60, 0, 0, 9, "ignored"});
        showAnd([] {
            QCOMPARE(line()->text(), QString("4"));
            QCOMPARE(line()->echoMode(), QLineEdit::Normal);
            QVERIFY(!ok()->isEnabled());
            cancel()->click();
        });
        QVERIFY(takeTrace().filter("onTimerTimeOut").isEmpty());
    }

    void anAnswerTimeRunsOnlyInAWindowThatIsThere()
    {
        dialog->SetInputRequest(input(0, 1, 1, 9));
        showAnd([this] {
            dialog->SetInKeyRequest(StkInKeyRequest{"Key", 0, 0, 30, 0, 0, 9, ""});
            QTRY_VERIFY(!dialog->IsDialogCreated());
            QVERIFY(!takeTrace().filter("onTimerTimeOut").isEmpty());
        });
    }

    void withoutAWindowNothingIsSent()
    {
        dialog->CloseDlg();
        QVERIFY(dialog->GetBtnClicked());
        QVERIFY(takeTrace().contains("Logic Instance/ widget is NULL " FILE_NAME ": onButtonClickCancel: TIME: "));
        dialog->onButtonClickOk();
        dialog->onTextEdited("x");
        dialog->setInitSetting();
        dialog->SetStkInputUiText();
        dialog->setStkInputObjectName();
        const QStringList trace = takeTrace();
        for (const char *text : {"Logic Instance/Widget is NULL " FILE_NAME ": onButtonClickOk: TIME: ",
                                 "Memory is null " FILE_NAME ": onTextEdited: TIME: ",
                                 "Arg is NULL: TIME: " FILE_NAME ": setInitSetting",
                                 "UI widget is null  of " FILE_NAME ": SetStkInputUiText: TIME: ",
                                 "Memory is null  " FILE_NAME ": setStkInputObjectName: TIME: "})
            QVERIFY2(trace.contains(text), text);
        QCOMPARE(modem.takeCalls(), QStringList());
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
