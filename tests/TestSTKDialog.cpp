#include "PluginTest.h"

#include <QHeaderView>
#include <QPointer>
#include <QTimer>

#include "STKInputDlg.h"
#include "STKThread.h"

#define FILE_NAME "../../src/STKPlugin/STKDialog"

/* A way to close the window in one of its states, and the calls that this makes. */
struct ClosingRow {
    QString way;
    bool waiting, returnPending;
    QStringList calls;
};
Q_DECLARE_METATYPE(ClosingRow)

/* The toolkit window: what the user does in it and what the card sends. */
class TestSTKDialog : public PluginTest {
    Q_OBJECT

    static void waitForEnd(STKDialog *dialog)
    {
        QTRY_VERIFY_WITH_TIMEOUT(!dialog->m_pStkThread->isRunning(), 5000);
        deliver();
    }

    void answerWith(STKDialog *dialog, int type, int cmdId)
    {
        send(type, cmdId);
        waitForEnd(dialog);
    }

    static void selectBy(const QString &way, int row)
    {
        clickRow(row);
        if (way == "button")
            click(button("Select"));
        else if (way == "double click")
            QTest::mouseDClick(table()->viewport(), Qt::LeftButton, Qt::NoModifier,
                               table()->visualItemRect(table()->item(row, 0)).center());
        else
            QTest::keyClick(table(), way == "Return" ? Qt::Key_Return : Qt::Key_Enter);
    }

    static void addWays() { addRows("way", {"button", "double click", "Return", "keypad Enter"}); }

    static QRect place(const char *name)
    {
        return QRect(button(name)->mapTo(frame(), QPoint()), button(name)->size());
    }

private slots:
    void slotsStandInTheirOrder()
    {
        const QMetaObject &meta = STKDialog::staticMetaObject;
        QCOMPARE(
            methodsOf(meta),
            QString(
                "onButtonClickClose() onButtonClickBack() onButtonClickSelect() "
                "onCellDoubleClicked(int,int) onSTKTimeOut() onSTKPlayToneTimeOut() "
                "onPlayingFinished() onDeviceAvailable(bool) onSTKSetupMenu() onSTKDisplayText() "
                "onSTKGetInkey() onSTKGetInput() onSTKSetupCall() onSTKPlayTone() onSTKSelItem() "
                "onSTKRefresh() onSTKSendSS() onSTKSendSMS() onSTKSendUSSD() onSTKLaunchBrowser() "
                "onSTKSetupIdleModeText() onSTKEndSession() onShowMainMenu() onChangeCursor() "
                "onCloseInputDlg() onMessageTimeOut()"));
        QCOMPARE(
            meta.method(meta.indexOfMethod("onDeviceAvailable(bool)")).parameterNames().first(),
            QByteArray("isAvaialable"));
    }

    void theWindowIsBuiltAsItShould()
    {
        putMainMenu();
        QVERIFY(STKDialog::Instance() == STKDialog::Instance());
        QCOMPARE(modem.takeCalls(),
                 QStringList({"RegisterCallBack()", "RegisterDevMgrCallback()"}));
        QWidget parent;
        QVERIFY(open(&parent));
        QCOMPARE(modem.takeCalls(), mainMenuRead + mainMenuRead);
        QCOMPARE(frame()->size(), QSize(380, 357));
        QCOMPARE(frame()->windowTitle(), QString("Operator"));
        QCOMPARE(frame()->windowModality(), Qt::WindowModal);
        QCOMPARE(frame()->parentWidget(), &parent);
        QVERIFY(frame()->testAttribute(Qt::WA_DeleteOnClose));
        QVERIFY(frame()->findChild<QWidget *>("STKPlugin_StkWidget"));
        QCOMPARE(QRect(table()->columnWidth(0), table()->rowHeight(2), table()->width(),
                       table()->height()),
                 QRect(345, 17, 345, 250));
        QCOMPARE(table()->columnCount(), 1);
        QVERIFY(table()->horizontalHeader()->isHidden() && table()->verticalHeader()->isHidden());
        QVERIFY(!table()->showGrid() && !table()->tabKeyNavigation());
        QCOMPARE(table()->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
        QCOMPARE(table()->editTriggers(),
                 QAbstractItemView::EditTriggers(QAbstractItemView::NoEditTriggers));
        QCOMPARE(table()->selectionBehavior(), QAbstractItemView::SelectRows);
        QCOMPARE(table()->selectionMode(), QAbstractItemView::SingleSelection);
        QCOMPARE(rows(), mainMenuRows);
        for (const QString name : {"Back", "Select", "Close"}) {
            QCOMPARE(button(name)->text(), "STKPlugin:IDS_STK_BTN_" + name.toUpper());
            QCOMPARE(button(name)->isEnabled(), name != "Back");
        }
        QCOMPARE(frame()->focusWidget(), button("Close"));
        // Everything inside the frame, nothing over anything else.
        QVERIFY(frame()->rect().contains(place("Close")));
        QVERIFY(!place("Close").intersects(place("Select")));
    }

    void aMenuIsTracedItemByItem()
    {
        STKDialog *const dialog = show();
        dialog->showMainMenu();
        QCOMPARE(takeTrace(),
                 QStringList({"Start of " FILE_NAME ": showMainMenu: TIME: ",
                              "Start of " FILE_NAME ": deleteTableItems: TIME: ",
                              "End of " FILE_NAME ": deleteTableItems: TIME: ",
                              "Item name = Account, Index=7", "Item name = Banking, Index=-1",
                              "Item name = News, Index=300",
                              "End of " FILE_NAME ": showMainMenu: TIME: "}));
        dialog->showSubMenu();
        QCOMPARE(takeTrace().last(), QString("End  of " FILE_NAME ": showSubMenu: TIME: "));
    }

    void aMainMenuItemIsSelected_data() { addWays(); }
    void aMainMenuItemIsSelected()
    {
        QFETCH(QString, way);
        STKDialog *const dialog = show();
        selectBy(way, 2);
        QCOMPARE(modem.takeCalls(), QStringList("SelectMenuItem(1,300)"));
        QVERIFY(isBusy());
        QCOMPARE(takeTrace().filter("Called with TimeOut = 20").size(), 1);
        QVERIFY(!dialog->m_bEnterPressed);
        answerWith(dialog, MOVA_STKTYPE_SELECT_ITEM, 8);
        QVERIFY(!isBusy());
        QCOMPARE(modem.takeCalls(), QStringList({"GetSubMenu(8)", "ReleaseSubMenus()"}));
        QCOMPARE(frame()->windowTitle(), QString("Accounts"));
        QCOMPARE(rows(), QStringList({"Current", "Savings"}));
        QVERIFY(button("Back")->isEnabled());

        selectBy(way, 1);
        QCOMPARE(modem.takeCalls(), QStringList("SelectSubMenuItem(8,1,6)"));
        QVERIFY(isBusy());
        QCOMPARE(takeTrace().filter("Called with TimeOut = 20").size(), 1);
        modem.subTitle = "";
        answerWith(dialog, MOVA_STKTYPE_SELECT_ITEM, 9);
        QCOMPARE(frame()->windowTitle(), QString("Operator"));
        send(MOVA_STKTYPE_SEND_SMS, 10); // it is not what the user answers
        click(button("Back"));
        QCOMPARE(modem.takeCalls(),
                 QStringList({"GetSubMenu(9)", "ReleaseSubMenus()", "SelectSubMenuItem(9,3,0)"}));
        QVERIFY(isBusy());
        answerWith(dialog, MOVA_STKTYPE_END_SESSION, 9);
        QCOMPARE(rows(), mainMenuRows);
        QVERIFY(!button("Back")->isEnabled());
        QCOMPARE(modem.takeCalls(), QStringList());

        // Refused, it shows the main menu afresh.
        modem.status["SelectMenuItem"] = modem.status["SelectSubMenuItem"] = -1;
        modem.mainItems = {{1, "Fresh"}};
        selectBy(way, 0);
        QCOMPARE(modem.takeCalls(), QStringList("SelectMenuItem(1,7)") + mainMenuRead);
        QCOMPARE(rows(), QStringList("Fresh"));
        QVERIFY(!isBusy());

        send(MOVA_STKTYPE_SELECT_ITEM, 8);
        modem.takeCalls();
        selectBy(way, 0);
        QCOMPARE(modem.takeCalls(), QStringList("SelectSubMenuItem(8,1,5)") + mainMenuRead);
        QCOMPARE(rows(), QStringList("Fresh"));
        send(MOVA_STKTYPE_SELECT_ITEM, 9);
        click(button("Back"));
        QCOMPARE(rows(), QStringList("Fresh"));
        // The window is as usable as before, whichever way the refused selection came.
        modem.status.clear();
        modem.takeCalls();
        selectBy(way, 0);
        QCOMPARE(modem.takeCalls(), QStringList("SelectMenuItem(1,1)"));
        QVERIFY(dialog->m_pStkThread->isRunning());
    }

    void identifiersAreFoundByName()
    {
        modem.mainItems.clear();
        STKDialog *const dialog = show();
        modem.mainItems = {{1, "Same"}, {2, "Other"}, {3, "Same"}, {4, ""}};
        modem.subItems = {{9, "Same"}, {0, "Only here"}};
        dialog->onSTKSetupMenu();
        modem.takeCalls();
        takeTrace();
        clickRow(0);
        takeTrace();
        dialog->onButtonClickSelect();
        QCOMPARE(modem.takeCalls(), QStringList("SelectMenuItem(1,3)"));
        QCOMPARE(
            takeTrace().mid(0, 6),
            QStringList(
                {"Start of " FILE_NAME ": onButtonClickSelect: TIME: ", "Item name = Same, Index=1",
                 "Item name = Other, Index=2", "Item name = Same, Index=3", "Item name = , Index=4",
                 "Current Index value = 3 " FILE_NAME ": onButtonClickSelect: TIME: "}));
        answerWith(dialog, 55, 1);
        clickRow(3); // no text: nothing to select
        dialog->onButtonClickSelect();
        QCOMPARE(modem.takeCalls(), QStringList());
        answerWith(dialog, MOVA_STKTYPE_SELECT_ITEM, 2);
        modem.takeCalls();
        clickRow(0);
        dialog->onButtonClickSelect();
        QCOMPARE(modem.takeCalls(), QStringList("SelectSubMenuItem(2,1,9)"));
    }

    void withoutAWindowOrAMenu()
    {
        STKDialog *const dialog = STKDialog::Instance();
        modem.takeCalls();
        dialog->onButtonClickSelect();
        QVERIFY(takeTrace().last().startsWith("Arg is NULL: TIME: " FILE_NAME
                                              ": onButtonClickSelect "));
        dialog->subMenuSeleted(nullptr);
        QVERIFY(takeTrace().last().startsWith("Arg is NULL: TIME: " FILE_NAME ": subMenuSeleted "));
        dialog->showMainMenu();
        QVERIFY(
            takeTrace().contains("Table Widget is null " FILE_NAME ": deleteTableItems: TIME: "));
        dialog->SetStkUiText();
        QVERIFY(takeTrace().contains("Widgets id NULL " FILE_NAME ": SetStkUiText: TIME: "));
        dialog->setStkObjectName();
        QVERIFY(
            takeTrace().contains("Some widget is null  " FILE_NAME ": setStkObjectName: TIME: "));
        modem.status["GetMainMenu"] = -1;
        QVERIFY(open());
        QCOMPARE(frame()->windowTitle(), QString());
        modem.takeCalls();
        click(button("Select"));
        QCOMPARE(modem.takeCalls(), QStringList());
    }

    void aWaitWithoutAnAnswerEndsInTheMainMenu()
    {
        STKDialog *const dialog = show();
        send(MOVA_STKTYPE_SELECT_ITEM, 8);
        modem.takeCalls();
        dialog->stkWaitforRespond(1);
        QVERIFY(isBusy());
        waitForEnd(dialog);
        QCOMPARE(modem.takeCalls(), mainMenuRead);
        QCOMPARE(rows(), mainMenuRows);
        QVERIFY(!isBusy());
        QVERIFY(takeTrace().contains("m_bRespondence value is false " FILE_NAME
                                     ": onChangeCursor: TIME: "));
        for (int timeOut : {0, -1}) {
            dialog->stkWaitforRespond(timeOut);
            QVERIFY(!dialog->m_pStkThread->isRunning() && !isBusy());
        }
        // A second wait replaces the first one's answer and its time-out.
        dialog->stkWaitforRespond(1000000);
        QTest::qWait(50); // between the wait's first poll and its second one
        modem.notify(55, 1); // would end the wait at its next poll
        dialog->stkWaitforRespond(1000000);
        QTest::qWait(250);
        QVERIFY(dialog->m_pStkThread->isRunning());
        dialog->stkWaitforRespond(1);
        waitForEnd(dialog);
        QVERIFY(!isBusy());
    }

    void closing_data()
    {
        QTest::addColumn<ClosingRow>("row");
        for (const char *way : {"button", "escape", "title bar"}) {
            const QStringList once = QString(way) == "title bar" ? QStringList() : mainMenuRead;
            QTest::addRow("%s, idle", way) << ClosingRow{way, false, false, mainMenuRead + once};
            QTest::addRow("%s, waiting", way) << ClosingRow{way, true, false, once};
            QTest::addRow("%s, Return pending", way)
                << ClosingRow{way, false, true, {"SelectMenuItem(1,7)"}};
            QTest::addRow("%s, both", way) << ClosingRow{way, true, true, {}};
        }
    }

    void closing()
    {
        QFETCH(ClosingRow, row);
        const bool waiting = row.waiting, returnPending = row.returnPending,
                   closes = !waiting && !returnPending;
        STKDialog *const dialog = show();
        QPointer<QDialog> window = frame();
        clickRow(0);
        dialog->m_bEnterPressed = returnPending;
        if (waiting)
            dialog->stkWaitforRespond(1000000);
        if (row.way == "button")
            click(button("Close"));
        else if (row.way == "escape")
            QTest::keyClick(window, Qt::Key_Escape);
        else
            window->close();
        QCOMPARE(modem.takeCalls(), row.calls);
        QCOMPARE(!window->isVisible(), closes);
        QCOMPARE(dialog->m_bEnterPressed, waiting && returnPending);
        QCOMPARE(dialog->m_pTableWidget.isNull(), closes);
        QCOMPARE(isBusy(),
                 row.way == "title bar" ? waiting || returnPending : !waiting && returnPending);
        deleteClosed();
        QCOMPARE(window.isNull(), closes);
    }

    void shownAndClosedTenTimes()
    {
        QWidget parent;
        parent.show();
        putMainMenu();
        for (int i = 0; i < 10; ++i) {
            QVERIFY(open(&parent));
            QCOMPARE(rows().size(), 3);
            QPointer<QDialog> window = frame();
            if (i % 3 == 0)
                click(button("Close"));
            else if (i % 3 == 1)
                window->close();
            else
                delete window; // its parent took it along
            deleteClosed();
            QVERIFY(window.isNull());
            // What the card sends to the closed window is taken without one.
            for (int type : {0, 6, 99, 55})
                modem.notify(type, i);
            modem.device(i % 2 ? 6601 : 6602);
            deliver();
        }
        // Both timers of every showing stay with the dialog.
        QCOMPARE(STKDialog::Instance()->findChildren<QTimer *>().size(), 20);
    }

    void theWindowOutlivesItsDialogUnharmed()
    {
        show();
        QPointer<QDialog> window = frame();
        STKDialog::Destroy();
        QVERIFY(window);
        clickRow(0);
        QTest::keyClick(table(), Qt::Key_Return);
        QTest::keyClick(window, Qt::Key_Escape);
        window->close();
        deleteClosed();
        QVERIFY(window.isNull());
    }

    void destructionStopsARunningWait()
    {
        for (int pause : {0, 150}) { // also in the moment in which the thread is only starting
            STKDialog *const dialog = show();
            dialog->stkWaitforRespond(1000000);
            QTest::qWait(pause);
            QElapsedTimer elapsed;
            elapsed.start();
            STKDialog::Destroy();
            QVERIFY(elapsed.elapsed() < 2000);
            QCOMPARE(ui.threadWaitSeconds, 5);
            STKDialog::Destroy();
        }
    }

    void theLogicGoesWithTheFirstOfItsOwners_data()
    {
        addRows("first", {"window", "input", "logic"});
    }
    void theLogicGoesWithTheFirstOfItsOwners()
    {
        QFETCH(QString, first);
        STKDialog *const dialog = show();
        clickRow(0);
        if (first == "input")
            STKInputDlg::DestroyInstance();
        else if (first == "logic")
            STKLogic::DestroyInst();
        else
            STKDialog::Destroy();
        modem.takeCalls();
        send(MOVA_STKTYPE_SETUP_MENU, 1);
        if (first != "window") {
            // Every slot finds the logic gone and leaves the card alone.
            const QMetaObject &meta = STKDialog::staticMetaObject;
            for (int i = meta.methodOffset() + 1; i < meta.methodCount(); ++i)
                QVERIFY(meta.method(i).parameterCount() > 0 || meta.method(i).invoke(dialog));
            dialog->stkWaitforRespond(20);
            QCOMPARE(modem.takeCalls(), QStringList());
            dialog->unSDKRegisterEvent(); // which needs no logic
        }
        QCOMPARE(modem.takeCalls().size(), first == "window" ? 0 : 2);
        STKDialog::Destroy();
        QVERIFY(STKDialog::Instance());
        QCOMPARE(modem.takeCalls().size(), 2);
    }

    void theCardRedrawsTheList()
    {
        STKDialog *const dialog = show();
        modem.mainTitle = "Newer";
        modem.mainItems = {{1, "<b>x</b>"}, {2, "<GO-BACKWARDS>"}};
        modem.notify(MOVA_STKTYPE_SETUP_MENU, 1);
        QCOMPARE(rows().size(), 3); // queued: the card's thread draws nothing
        deliver();
        QCOMPARE(rows(), QStringList({"<b>x</b>", "<GO-BACKWARDS>"}));
        QCOMPARE(frame()->windowTitle(), QString("Newer"));
        modem.status["GetSubMenu"] = -1;
        modem.takeCalls();
        send(MOVA_STKTYPE_SELECT_ITEM, 2);
        QCOMPARE(rows(), QStringList({"<b>x</b>", "<GO-BACKWARDS>"})); // unreadable: as it was
        QCOMPARE(dialog->m_strMenuState, QString("STK_MAINMENU"));
        // It reported false, so the next command is answered as terminated and the menu comes back.
        send(MOVA_STKTYPE_SETUP_MENU, 3);
        QCOMPARE(modem.takeCalls(),
                 QStringList({"GetSubMenu(2)", "SendNoDataResponse(3,0,0)", "GetMainMenu()",
                              "ReleaseMenus()", "GetMainMenu()", "ReleaseMenus()"}));
    }

    void theModemGoesAndComes()
    {
        show();
        QPointer<QDialog> window = frame();
        modem.device(MOVA_DEV_EVENT_DEVICE_REMOVED);
        QTRY_VERIFY(!window || !window->isVisible());
        modem.device(MOVA_DEV_EVENT_DEVICE_NOT_READY); // nothing is open any more
        deliver();
        show();
        const QString wide(30, QChar(0x4E2D)), narrow(40, 'i');
        modem.mainItems = {{1, wide}, {2, narrow}, {3, "a\nb"}, {4, "<b>" + wide}};
        modem.device(MOVA_DEV_EVENT_DEVICE_READY);
        deliver();
        QCOMPARE(rows(), QStringList({wide, narrow, "a\nb", "<b>" + wide}));
        // What does not fit its row has a tool tip, as plain text.
        QStringList tips;
        for (int row = 0; row < 4; ++row)
            tips << table()->item(row, 0)->toolTip();
        QCOMPARE(tips,
                 QStringList({"<qt>" + wide + "</qt>", "", "<qt>a<br/>b</qt>",
                              "<qt>&lt;b>" + wide + "</qt>"}));
        // Closed before the modem's own time-out could close it, and shown again: it stays.
        modem.device(MOVA_DEV_EVENT_DEVICE_REMOVED);
        deliver();
        frame()->close();
        show();
        QTest::qWait(300);
        QVERIFY(frame());
        // And its texts follow the language.
        ui.language = "de:";
        STKDialog::Instance()->SetStkUiText();
        QCOMPARE(button("Back")->text(), QString("de:STKPlugin:IDS_STK_BTN_BACK"));
        QCOMPARE(rows(), mainMenuRows);
    }
};

QTEST_MAIN(TestSTKDialog)
#include "TestSTKDialog.moc"
