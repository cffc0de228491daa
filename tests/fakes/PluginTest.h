#ifndef PLUGINTEST_H
#define PLUGINTEST_H

#include <QPushButton>
#include <QStringList>
#include <QTableWidget>
#include <QtTest>

#include "FakeHostUi.h"
#include "FakeModemService.h"
#include "STKDialog.h"

/* What the tests of the plug-in share: clean fakes for every test function, the trace lines that were
 * written, and the toolkit window as a user sees it. */
class PluginTest : public QObject
{
    Q_OBJECT

protected:
    FakeModemService &modem = FakeModemService::get();
    FakeHostUi &ui = FakeHostUi::get();

    /* The trace lines since the last take, each with its time field replaced by "TIME". */
    static QStringList takeTrace();
    /* Of those, the lines of one function. */
    static QStringList traceOf(const QString &function);

    /* A main menu of three items with the identifiers 7, -1 and 300, in this order. */
    void putMainMenu();
    /* A sub menu of two items with the identifiers 5 and 6. */
    void putSubMenu();
    /* Shows the toolkit window on that menu and forgets the calls and the trace so far. */
    STKDialog *show();

    static QDialog *frame();
    static QTableWidget *table();
    static QPushButton *button(const char *name);
    static QStringList rows();
    static void clickRow(int row);
    static bool isBusy();
    /* Delivers what the callbacks' thread posted. */
    static void deliver();

protected slots:
    void initTestCase();
    void init();
    void cleanup();

private:
    template <typename Widget>
    static Widget *find(const char *name);
};

#endif
