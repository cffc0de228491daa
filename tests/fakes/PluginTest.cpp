#include "PluginTest.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace {

// Not Qt's: its lock is invisible to the thread sanitizer.
std::mutex traceMutex;
QStringList traceLines;

void recordTrace(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type != QtDebugMsg) {
        fprintf(stderr, "%s\n", qPrintable(message));
        return;
    }
    std::lock_guard<std::mutex> lock(traceMutex);
    traceLines << message;
}

} // namespace

QStringList PluginTest::takeTrace()
{
    static const QRegularExpression time("\\b[0-2]\\d:[0-5]\\d:[0-5]\\d:\\d{3}\\b");
    std::lock_guard<std::mutex> lock(traceMutex);
    return std::exchange(traceLines, QStringList()).replaceInStrings(time, "TIME");
}

bool PluginTest::traced(const QString &text, const QString &function)
{
    const QStringList lines = takeTrace();
    return std::any_of(lines.begin(), lines.end(), [&](const QString &line) {
        return line.startsWith(text + " ../../src/STKPlugin/") &&
            line.endsWith(": " + function + ": TIME: ");
    });
}

QString PluginTest::methodsOf(const QMetaObject &meta)
{
    QStringList signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        signatures << meta.method(i).methodSignature();
    return signatures.join(" ");
}

void PluginTest::addRows(const char *column, const QStringList &texts)
{
    QTest::addColumn<QString>(column);
    for (const QString &text : texts)
        QTest::newRow(qPrintable(text)) << text;
}

void PluginTest::initTestCase()
{
    qInstallMessageHandler(recordTrace);
}

void PluginTest::init()
{
    modem = FakeModemService();
    ui = FakeHostUi();
    modem.takeCalls();
    takeTrace();
}

void PluginTest::cleanup()
{
    STKDialog::Destroy();
    takeTrace();
    for (QWidget *window : QApplication::topLevelWidgets())
        delete qobject_cast<ExtendDialog *>(window);
    deleteClosed();
    while (QApplication::overrideCursor())
        QApplication::restoreOverrideCursor();
    QCOMPARE(modem.menusOut, 0);
}

void PluginTest::putMainMenu()
{
    modem.mainTitle = "Operator";
    modem.mainItems = {{7, "Account"}, {-1, "Banking"}, {300, "News"}};
}

bool PluginTest::open(QWidget *parent)
{
    QRect area;
    return STKDialog::Instance()->ShowStkDlg(parent, area);
}

STKDialog *PluginTest::show()
{
    putMainMenu();
    modem.subTitle = "Accounts";
    modem.subItems = {{5, "Current"}, {6, "Savings"}};
    STKDialog *const dialog = STKDialog::Instance();
    open();
    if (!QTest::qWaitForWindowActive(frame()))
        qWarning("the toolkit window did not become active");
    modem.takeCalls();
    takeTrace();
    return dialog;
}

QStringList PluginTest::rows()
{
    QStringList texts;
    for (int i = 0; i < table()->rowCount(); ++i)
        texts << table()->item(i, 0)->text();
    return texts;
}

void PluginTest::clickRow(int row)
{
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, Qt::NoModifier,
                      table()->visualItemRect(table()->item(row, 0)).center());
}

bool PluginTest::isBusy()
{
    return QApplication::overrideCursor() &&
        QApplication::overrideCursor()->shape() == Qt::WaitCursor;
}

void PluginTest::send(int type, int cmdId, int timeOut)
{
    modem.notify(type, cmdId, timeOut);
    deliver();
}
