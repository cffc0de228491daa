#include "PluginTest.h"

#include <QHeaderView>
#include <QPointer>
#include <QSignalSpy>
#include <QTimer>

#include "STKInputDlg.h"
#include "STKThread.h"

#define FILE_NAME "../../src/STKPlugin/STKDialog"

/* The toolkit window and its list: what the user does in it and what the card sends. */
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

    /* The calls of choosing a row, or of Back where there is none. */
    QString choose(const QString &way, int row = -1)
    {
        modem.takeCalls();
        if (row >= 0)
            clickRow(row);
        if (row < 0 || way == "button")
            click(button(row < 0 ? "Back" : "Select"));
        else if (way == "double click")
            QTest::mouseDClick(table()->viewport(), Qt::LeftButton, Qt::NoModifier,
                               table()->visualItemRect(table()->item(row, 0)).center());
        else
            QTest::keyClick(table(), way == "Return" ? Qt::Key_Return : Qt::Key_Enter);
        return calls();
    }

    static QRect place(const char *name)
    {
        return QRect(button(name)->mapTo(frame(), QPoint()), button(name)->size());
    }

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
        const QMetaMethod available = meta.method(meta.indexOfMethod("onDeviceAvailable(bool)"));
        QCOMPARE(available.parameterNames().first(), QByteArray("isAvaialable"));
    }

    void theWindowIsBuiltAsItShould()
    {
        putMainMenu();
        QVERIFY(STKDialog::Instance() == STKDialog::Instance());
        QCOMPARE(calls(), QString("RegisterCallBack() RegisterDevMgrCallback()"));
        QWidget parent;
        QVERIFY(open(&parent));
        QCOMPARE(modem.takeCalls(), mainMenuRead + mainMenuRead);
        QCOMPARE(frame()->size(), QSize(380, 357));
        QCOMPARE(frame()->windowTitle(), QString("Operator"));
        QCOMPARE(frame()->windowModality(), Qt::WindowModal);
        QCOMPARE(frame()->parentWidget(), &parent);
        QVERIFY(frame()->testAttribute(Qt::WA_DeleteOnClose));
        QVERIFY(frame()->findChild<QWidget *>("STKPlugin_StkWidget"));
        QCOMPARE(QSize(table()->columnWidth(0), table()->rowHeight(2)), QSize(345, 17));
        QCOMPARE(table()->size(), QSize(345, 250));
        QVERIFY(table()->horizontalHeader()->isHidden() && table()->verticalHeader()->isHidden());
        QVERIFY(!table()->showGrid() && !table()->tabKeyNavigation());
        QCOMPARE(table()->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
        QVERIFY(table()->editTriggers() == QAbstractItemView::NoEditTriggers);
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
        QCOMPARE(takeTrace().replaceInStrings(" " FILE_NAME, "").join("|"),
                 QString("Start of: showMainMenu: TIME: |Start of: deleteTableItems: TIME: |"
                         "End of: deleteTableItems: TIME: |Item name = Account, Index=7|"
                         "Item name = Banking, Index=-1|Item name = News, Index=300|"
                         "End of: showMainMenu: TIME: "));
        dialog->showSubMenu();
        QVERIFY(traced("End  of", "showSubMenu"));
    }

    void anItemIsSelected_data()
    {
        addRows("way", {"button", "double click", "Return", "keypad Enter"});
    }
    void anItemIsSelected()
    {
        QFETCH(QString, way);
        STKDialog *const dialog = show();
        QCOMPARE(choose(way, 2), QString("SelectMenuItem(1,300)"));
        QVERIFY(isBusy() && !dialog->m_bEnterPressed);
        QCOMPARE(takeTrace().filter("Called with TimeOut = 20").size(), 1);
        answerWith(dialog, MOVA_STKTYPE_SELECT_ITEM, 8);
        QVERIFY(!isBusy());
        QCOMPARE(calls(), QString("GetSubMenu(8) ReleaseSubMenus()"));
        QCOMPARE(frame()->windowTitle(), QString("Accounts"));
        QCOMPARE(rows(), QStringList({"Current", "Savings"}));
        QVERIFY(button("Back")->isEnabled());

        QCOMPARE(choose(way, 1), QString("SelectSubMenuItem(8,1,6)"));
        QVERIFY(isBusy());
        QCOMPARE(takeTrace().filter("Called with TimeOut = 20").size(), 1);
        modem.subTitle = "";
        answerWith(dialog, MOVA_STKTYPE_SELECT_ITEM, 9);
        QCOMPARE(frame()->windowTitle(), QString("Operator"));
        send(MOVA_STKTYPE_SEND_SMS, 10); // it is not what the user answers
        QCOMPARE(choose("Back"), QString("SelectSubMenuItem(9,3,0)"));
        QVERIFY(isBusy());
        answerWith(dialog, MOVA_STKTYPE_END_SESSION, 9);
        QCOMPARE(rows(), mainMenuRows);
        QVERIFY(!button("Back")->isEnabled());
        QCOMPARE(calls(), QString());

        // Refused, it shows the main menu afresh, and the window is as usable as before.
        modem.status["SelectMenuItem"] = modem.status["SelectSubMenuItem"] = -1;
        modem.mainItems = {{1, "Fresh"}};
        const QString read = " " + mainMenuRead.join(" ");
        for (const QString call :
             {"SelectMenuItem(1,7)", "SelectSubMenuItem(8,1,5)", "SelectSubMenuItem(8,3,0)"}) {
            if (call.contains("Sub"))
                send(MOVA_STKTYPE_SELECT_ITEM, 8);
            QCOMPARE(choose(way, call.contains("3") ? -1 : 0), call + read);
            QCOMPARE(rows(), QStringList("Fresh"));
            QVERIFY(!isBusy());
        }
        modem.status.clear();
        QCOMPARE(choose(way, 0), QString("SelectMenuItem(1,1)"));
        QVERIFY(dialog->m_pStkThread->isRunning());
    }

    void identifiersAreFoundByName()
    {
        STKDialog *const dialog = show();
        modem.mainItems = {{1, "Same"}, {2, "Other"}, {3, "Same"}, {4, ""}};
        modem.subItems = {{9, "Same"}, {0, "Only here"}};
        dialog->onSTKSetupMenu();
        takeTrace();
        QCOMPARE(choose("button", 0), QString("SelectMenuItem(1,3)"));
        QVERIFY(traced("Current Index value = 3", "onButtonClickSelect"));
        answerWith(dialog, 55, 1);
        QCOMPARE(choose("button", 3), QString()); // no text: nothing to select
        answerWith(dialog, MOVA_STKTYPE_SELECT_ITEM, 2);
        QCOMPARE(choose("button", 0), QString("SelectSubMenuItem(2,1,9)"));
    }

    void withoutAWindowOrAMenu()
    {
        STKDialog *const dialog = STKDialog::Instance();
        dialog->onButtonClickSelect();
        QVERIFY(takeTrace().last().startsWith("Arg is NULL: TIME: " FILE_NAME
                                              ": onButtonClickSelect "));
        dialog->subMenuSeleted(nullptr);
        QVERIFY(takeTrace().last().startsWith("Arg is NULL: TIME: " FILE_NAME ": subMenuSeleted "));
        dialog->showMainMenu();
        QVERIFY(traced("Table Widget is null", "deleteTableItems"));
        dialog->SetStkUiText();
        QVERIFY(traced("Widgets id NULL", "SetStkUiText"));
        dialog->setStkObjectName();
        QVERIFY(traced("Some widget is null ", "setStkObjectName"));
        modem.status["GetMainMenu"] = -1;
        QVERIFY(open());
        QCOMPARE(frame()->windowTitle(), QString());
        modem.takeCalls();
        click(button("Select"));
        QCOMPARE(calls(), QString());
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
        QVERIFY(traced("m_bRespondence value is false", "onChangeCursor"));
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
        // It also ends when the first one's thread is held up on its way out.
        connect(
            dialog->m_pStkThread, &STKThread::ChangeCursor, this, [] { QThread::msleep(200); },
            Qt::DirectConnection);
        for (int wait = 0; wait < 2; ++wait) {
            dialog->stkWaitforRespond(1);
            QTRY_VERIFY(!isBusy());
        }
    }

    void closing_data()
    {
        QStringList ways;
        for (const QString way : {"Close", "escape", "title bar"})
            ways << way << way + ", waiting" << way + ", Return" << way + ", waiting, Return";
        addRows("way", ways);
    }
    void closing()
    {
        QFETCH(QString, way);
        const bool waiting = way.contains("waiting"), returnPending = way.endsWith("Return"),
                   closes = !waiting && !returnPending, bar = way.startsWith("title");
        STKDialog *const dialog = show();
        QPointer<QDialog> window = frame();
        clickRow(0);
        dialog->m_bEnterPressed = returnPending;
        if (waiting)
            dialog->stkWaitforRespond(1000000);
        if (way[0] == 'C')
            click(button("Close"));
        else if (way[0] == 'e')
            QTest::keyClick(window, Qt::Key_Escape);
        else
            window->close();
        QStringList expected;
        if (returnPending && !waiting)
            expected << "SelectMenuItem(1,7)";
        for (int reads = returnPending ? 0 : closes + !bar; reads > 0; --reads)
            expected << mainMenuRead;
        QCOMPARE(modem.takeCalls(), expected);
        QCOMPARE(!window->isVisible(), closes);
        QCOMPARE(dialog->m_bEnterPressed, waiting && returnPending);
        QCOMPARE(dialog->m_pTableWidget.isNull(), closes);
        QCOMPARE(isBusy(), bar ? !closes : !waiting && returnPending);
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
            if (i % 2)
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

    void destructionStopsARunningWait()
    {
        for (int pause : {0, 150}) { // also in the moment in which the thread is only starting
            show()->stkWaitforRespond(1000000);
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
        send(MOVA_STKTYPE_SETUP_MENU, 1);
        if (first == "window") { // the user's outlives it unharmed
            QPointer<QDialog> window = frame();
            QTest::keyClick(table(), Qt::Key_Return);
            QTest::keyClick(window, Qt::Key_Escape);
            window->close();
            deleteClosed();
            QVERIFY(window.isNull());
        } else {
            // Every slot finds the logic gone and leaves the card alone.
            const QMetaObject &meta = STKDialog::staticMetaObject;
            for (int i = meta.methodOffset() + 1; i < meta.methodCount(); ++i)
                QVERIFY(meta.method(i).parameterCount() > 0 || meta.method(i).invoke(dialog));
            dialog->stkWaitforRespond(20);
            QCOMPARE(calls(), QString());
            dialog->unSDKRegisterEvent(); // which needs no logic
        }
        QCOMPARE(modem.takeCalls().size(), first == "window" ? 0 : 2);
        STKDialog::Destroy();
        QVERIFY(STKDialog::Instance());
        QCOMPARE(modem.takeCalls().size(), 2);
    }

    void theCardRedrawsTheList()
    {
        show();
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
        QCOMPARE(rows().first(), QString("<b>x</b>")); // unreadable: as it was
        QCOMPARE(STKDialog::Instance()->m_strMenuState, QString("STK_MAINMENU"));
        // It reported false, so the next command is answered as terminated and the menu comes back.
        send(MOVA_STKTYPE_SETUP_MENU, 3);
        QCOMPARE(modem.takeCalls(),
                 QStringList({"GetSubMenu(2)", "SendNoDataResponse(3,0,0)"}) + mainMenuRead +
                     mainMenuRead);
    }

    void aListWithoutADialogIsAPlainOne()
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

    void theModemGoesAndComes()
    {
        STKDialog *const dialog = show();
        QPointer<QDialog> window = frame();
        dialog->stkWaitforRespond(1000000); // during which it cannot close
        QSignalSpy ticks(dialog->findChild<QTimer *>("STKTimer"), SIGNAL(timeout()));
        modem.device(MOVA_DEV_EVENT_DEVICE_REMOVED);
        QVERIFY(ticks.wait());
        modem.notify(MOVA_STKTYPE_END_SESSION, 1);
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
        QCOMPARE(tips.join("|").replace(wide, "W"),
                 QString("<qt>W</qt>||<qt>a<br/>b</qt>|<qt>&lt;b>W</qt>"));
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
    }
};

QTEST_MAIN(TestSTKDialog)
#include "TestSTKDialog.moc"
