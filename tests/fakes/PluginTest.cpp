#include "PluginTest.h"

#include <mutex>

#include <QApplication>
#include <QRegularExpression>

#include "STKInputDlg.h"

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
    std::lock_guard<std::mutex> lock(traceMutex);
    QStringList lines;
    static const QRegularExpression time("\\b[0-2]\\d:[0-5]\\d:[0-5]\\d:\\d{3}\\b");
    for (QString line : qAsConst(traceLines))
        lines << line.replace(time, "TIME");
    traceLines.clear();
    return lines;
}

QStringList PluginTest::traceOf(const QString &function)
{
    return takeTrace().filter(QRegularExpression("(: | )" + QRegularExpression::escape(function) + "\\b"));
}

void PluginTest::initTestCase()
{
    qInstallMessageHandler(recordTrace);
}

void PluginTest::init()
{
    modem.reset();
    ui.reset();
    takeTrace();
}

void PluginTest::cleanup()
{
    STKDialog::Destroy();
    takeTrace();
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (qobject_cast<ExtendDialog *>(window))
            delete window;
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    while (QApplication::overrideCursor())
        QApplication::restoreOverrideCursor();
    QCOMPARE(modem.menusOut(), 0);
}

void PluginTest::putMainMenu()
{
    modem.mainTitle = "Operator";
    modem.mainItems = {{7, "Account"}, {-1, "Banking"}, {300, "News"}};
}

void PluginTest::putSubMenu()
{
    modem.subTitle = "Accounts";
    modem.subItems = {{5, "Current"}, {6, "Savings"}};
}

STKDialog *PluginTest::show()
{
    putMainMenu();
    putSubMenu();
    STKDialog *const dialog = STKDialog::Instance();
    QRect area;
    dialog->ShowStkDlg(nullptr, area);
    if (!QTest::qWaitForWindowActive(frame()))
        qWarning("the toolkit window did not become active");
    modem.takeCalls();
    takeTrace();
    return dialog;
}

template <typename Widget>
Widget *PluginTest::find(const char *name)
{
    const QWidgetList widgets = QApplication::allWidgets();
    for (QWidget *widget : widgets) {
        if (widget->objectName() == name && widget->isVisible())
            return qobject_cast<Widget *>(widget);
    }
    return nullptr;
}

QDialog *PluginTest::frame()
{
    return find<QDialog>("STKPlugin_Stkdialog");
}

QTableWidget *PluginTest::table()
{
    return find<QTableWidget>("STKPlugin_TableWidgetMenu");
}

QPushButton *PluginTest::button(const char *name)
{
    return find<QPushButton>((QByteArray("STKPlugin_PushBtn") + name).constData());
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
    return QApplication::overrideCursor() && QApplication::overrideCursor()->shape() == Qt::WaitCursor;
}

void PluginTest::deliver()
{
    QCoreApplication::sendPostedEvents();
}
