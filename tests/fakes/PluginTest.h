#ifndef PLUGINTEST_H
#define PLUGINTEST_H

#include <QApplication>
#include <QPushButton>
#include <QStringList>
#include <QTableWidget>
#include <QtTest>

#include "FakeHostUi.h"
#include "FakeModemService.h"
#include "STKDialog.h"

/* What the tests of the plug-in share: clean fakes for every test function, the trace lines that
 * were written, and the toolkit window as a user sees it. */
class PluginTest : public QObject {
    Q_OBJECT

protected:
    FakeModemService &modem = fakeModem;
    FakeHostUi &ui = fakeHostUi;
    const QStringList mainMenuRead{"GetMainMenu()", "ReleaseMenus()"};
    const QStringList mainMenuRows{"Account", "Banking", "News"};

    /* The trace lines since the last take, each with its time field replaced by "TIME". */
    static QStringList takeTrace();

    /* Whether a function wrote that since the last take. */
    static bool traced(const QString &text, const QString &function);

    /* The service's calls since the last take, with blanks between. */
    QString calls() { return modem.takeCalls().join(" "); }

    /* The signals and slots of a class in their order. */
    static QString methodsOf(const QMetaObject &meta);
    /* One column of texts, a row each that is named like its text. */
    static void addRows(const char *column, const QStringList &texts);

    /* A main menu of three items with the identifiers 7, -1 and 300, in this order. */
    void putMainMenu();
    /* Builds the toolkit window. */
    static bool open(QWidget *parent = nullptr);
    /* Shows it on that menu, with a sub menu of two items with the identifiers 5 and 6 to come, and
     * forgets the calls and the trace so far. */
    STKDialog *show();

    static QDialog *frame() { return find<QDialog>("STKPlugin_Stkdialog"); }
    static QTableWidget *table() { return find<QTableWidget>("STKPlugin_TableWidgetMenu"); }
    static QPushButton *button(const QString &name)
    {
        return find<QPushButton>("STKPlugin_PushBtn" + name);
    }
    static QStringList rows();
    static void clickRow(int row);
    static void click(QWidget *widget) { QTest::mouseClick(widget, Qt::LeftButton); }
    static bool isBusy();
    /* Delivers what the callbacks' thread posted. */
    static void deliver() { QCoreApplication::sendPostedEvents(); }
    /* Notifies and delivers. */
    void send(int type, int cmdId, int timeOut = 0);
    static void deleteClosed()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

protected slots:
    void initTestCase();
    void init();
    void cleanup();

private:
    /* The visible widget of that name. */
    template <typename Widget> static Widget *find(const QString &name)
    {
        for (QWidget *widget : QApplication::allWidgets()) {
            if (widget->objectName() == name && widget->isVisible())
                return qobject_cast<Widget *>(widget);
        }
        return nullptr;
    }
};

#endif
