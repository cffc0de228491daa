#include "PluginTest.h"

#include "STKThread.h"

#define FILE_NAME "../../src/STKPlugin/STKDialog"

/* The list's own keys and presses, in the window that it lives in. */
class TestSTKTableWidget : public PluginTest
{
    Q_OBJECT

    /* A point of the list below its last row. */
    static QPoint emptySpace() { return QPoint(20, table()->viewport()->height() - 5); }

private slots:
    void withoutADialogItIsAPlainList()
    {
        STKTableWidget list(nullptr);
        QCOMPARE(takeTrace(), QStringList("TIME: " FILE_NAME ": STKTableWidget Entered"));
        QTest::keyClick(&list, Qt::Key_Return);
        QTest::mouseClick(list.viewport(), Qt::LeftButton);
        const QStringList trace = takeTrace();
        QCOMPARE(trace.size(), 4);
        QCOMPARE(trace[0], QString("TIME: " FILE_NAME ": keyPressEvent Start "));
        QVERIFY(QRegularExpression("^Arg is NULL: TIME: " FILE_NAME ": keyPressEvent \\d+$").match(trace[1]).hasMatch());
        QCOMPARE(trace[2], QString("TIME: " FILE_NAME ": mouseReleaseEvent Start"));
        QVERIFY(QRegularExpression("^Arg is NULL: TIME: " FILE_NAME ": mouseReleaseEvent \\d+$")
                    .match(trace[3]).hasMatch());
        list.keyPressEvent(nullptr);
        QVERIFY(takeTrace().last().startsWith("Arg is NULL: TIME: "));
    }

    void aReleaseOnEmptySpaceClearsTheCurrentRow()
    {
        STKDialog *const dialog = show();
        clickRow(1);
        QCOMPARE(table()->currentRow(), 1);
        QCOMPARE(takeTrace(), QStringList({"TIME: " FILE_NAME ": mouseReleaseEvent Start",
                                           "TIME: " FILE_NAME ": mouseReleaseEvent End "}));
        button("Back")->setEnabled(true);
        QTest::mouseClick(table()->viewport(), Qt::LeftButton, Qt::NoModifier, emptySpace());
        QCOMPARE(table()->currentRow(), -1);
        QVERIFY(!button("Back")->isEnabled());
        QTest::mouseClick(button("Select"), Qt::LeftButton);
        QCOMPARE(modem.takeCalls(), QStringList());

        modem.notify(MOVA_STKTYPE_SELECT_ITEM, 3);
        deliver();
        QCOMPARE(dialog->m_strMenuState, QString("STK_SUBMENU"));
        QTest::mouseClick(table()->viewport(), Qt::LeftButton, Qt::NoModifier, emptySpace());
        QVERIFY(button("Back")->isEnabled());
    }

    void returnRaisesTheFlagOnASelectionOnly_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<bool>("selected");
        QTest::addColumn<bool>("raised");
        QTest::newRow("Return") << int(Qt::Key_Return) << true << true;
        QTest::newRow("keypad Enter") << int(Qt::Key_Enter) << true << true;
        QTest::newRow("nothing selected") << int(Qt::Key_Return) << false << false;
        QTest::newRow("another key") << int(Qt::Key_Space) << true << false;
    }

    void returnRaisesTheFlagOnASelectionOnly()
    {
        QFETCH(int, key);
        QFETCH(bool, selected);
        QFETCH(bool, raised);
        STKDialog *const dialog = show();
        if (selected)
            clickRow(2);
        // Straight into the handler, so that the event does not travel on to the frame.
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        dialog->m_pTableWidget->keyPressEvent(&event);
        QCOMPARE(dialog->m_bEnterPressed, raised);
        QCOMPARE(modem.takeCalls(), QStringList());
    }

    void duringAWaitNothingMoves()
    {
        STKDialog *const dialog = show();
        clickRow(0);
        dialog->stkWaitforRespond(1000000);
        takeTrace();
        clickRow(2);
        for (Qt::Key key : {Qt::Key_Down, Qt::Key_End, Qt::Key_PageDown, Qt::Key_Return}) {
            QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
            dialog->m_pTableWidget->keyPressEvent(&event);
            QVERIFY(!event.isAccepted());
        }
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
