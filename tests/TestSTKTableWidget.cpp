#include "PluginTest.h"

#include "STKThread.h"

#define FILE_NAME "../../src/STKPlugin/STKDialog"

/* The list's own keys and presses, in the window that it lives in. */
class TestSTKTableWidget : public PluginTest {
    Q_OBJECT

    static void clickBelowTheRows()
    {
        QTest::mouseClick(table()->viewport(), Qt::LeftButton, Qt::NoModifier,
                          QPoint(20, table()->viewport()->height() - 5));
    }

    /* Straight into the handler, so that the event does not travel on to the frame; false when
     * ignored. */
    static bool press(STKDialog *dialog, Qt::Key key)
    {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        dialog->m_pTableWidget->keyPressEvent(&event);
        return event.isAccepted();
    }

private slots:
    void withoutADialogItIsAPlainList()
    {
        STKTableWidget list(nullptr);
        QTest::keyClick(&list, Qt::Key_Return);
        QTest::mouseClick(list.viewport(), Qt::LeftButton);
        list.keyPressEvent(nullptr);
        QCOMPARE(takeTrace().replaceInStrings(QRegularExpression("Event \\d+$"), "Event LINE"),
                 QStringList({"TIME: " FILE_NAME ": STKTableWidget Entered",
                              "TIME: " FILE_NAME ": keyPressEvent Start ",
                              "Arg is NULL: TIME: " FILE_NAME ": keyPressEvent LINE",
                              "TIME: " FILE_NAME ": mouseReleaseEvent Start",
                              "Arg is NULL: TIME: " FILE_NAME ": mouseReleaseEvent LINE",
                              "TIME: " FILE_NAME ": keyPressEvent Start ",
                              "Arg is NULL: TIME: " FILE_NAME ": keyPressEvent LINE"}));
    }

    void aReleaseOnEmptySpaceClearsTheCurrentRow()
    {
        STKDialog *const dialog = show();
        clickRow(1);
        QCOMPARE(table()->currentRow(), 1);
        QCOMPARE(takeTrace(),
                 QStringList({"TIME: " FILE_NAME ": mouseReleaseEvent Start",
                              "TIME: " FILE_NAME ": mouseReleaseEvent End "}));
        button("Back")->setEnabled(true);
        clickBelowTheRows();
        QCOMPARE(table()->currentRow(), -1);
        QVERIFY(!button("Back")->isEnabled());
        click(button("Select"));
        QCOMPARE(modem.takeCalls(), QStringList());
        send(MOVA_STKTYPE_SELECT_ITEM, 3);
        QCOMPARE(dialog->m_strMenuState, QString("STK_SUBMENU"));
        clickBelowTheRows();
        QVERIFY(button("Back")->isEnabled());
    }

    void returnRaisesTheFlagOnASelectionOnly()
    {
        STKDialog *const dialog = show();
        press(dialog, Qt::Key_Return);
        QVERIFY(!dialog->m_bEnterPressed);
        clickRow(2);
        for (Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
            dialog->m_bEnterPressed = false;
            press(dialog, key);
            QCOMPARE(dialog->m_bEnterPressed, key != Qt::Key_Space);
        }
        QCOMPARE(modem.takeCalls(), QStringList());
    }

    void duringAWaitNothingMoves()
    {
        STKDialog *const dialog = show();
        clickRow(0);
        dialog->stkWaitforRespond(1000000);
        takeTrace();
        clickRow(2);
        for (Qt::Key key : {Qt::Key_Down, Qt::Key_End, Qt::Key_PageDown, Qt::Key_Return})
            QVERIFY(!press(dialog, key));
        QCOMPARE(table()->currentRow(), 0);
        QVERIFY(!dialog->m_bEnterPressed);
        QVERIFY(takeTrace().filter("keyPressEvent End").isEmpty());
        modem.notify(55, 1);
        QTRY_VERIFY(!dialog->m_pStkThread->isRunning());
        QTest::keyClick(table(), Qt::Key_Down);
        QCOMPARE(table()->currentRow(), 1);
        QTest::keyClick(table(), Qt::Key_End);
        QTest::keyClick(table(), Qt::Key_Down);
        QCOMPARE(table()->currentRow(), 2);
    }
};

QTEST_MAIN(TestSTKTableWidget)
#include "TestSTKTableWidget.moc"
