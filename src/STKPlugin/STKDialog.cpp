#include "STKDialog.h"

#include <new>

#include <QApplication>
#include <QCloseEvent>
#include <QFile>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "STKKeyboardLoan.h"
#include "STKInputDlg.h"
#include "STKRowToolTip.h"
#include "STKThread.h"
#include "TraceLog.h"
#include "platform/Change.h"
#include "platform/ClipMessageBox.h"
#include "platform/ClipSound.h"
#include "platform/CommonUtils.h"

#define STK_TRACE_FILE "../../src/STKPlugin/STKDialog"

namespace {

const int FRAME_WIDGET_TYPE = 1, MESSAGE_WIDGET_TYPE = 4;
const int TABLE_WIDTH = 345;
const int ROW_HEIGHT = 17;
const int THREAD_STOP_SECONDS = 5;
const int WAIT_AFTER_MENU_CHOICE = 20,
          WAIT_AFTER_INPUT = 10; /* in the unit of STKThread::TimeStamp */
const int DEFAULT_TEXT_SECONDS = 3;
const int INPUT_TYPE_YES_NO = 1;
const int FALLBACK_TONE = 8; /* ringing, ETSI TS 102 223 clause 8.16 */
const char STK_TIMER_NAME[] = "STKTimer", TONE_TIMER_NAME[] = "STKPlayToneTimer";
const char HOST_CONTEXT[] = "LuminePlugin"; /* where the host keeps the texts of its own buttons */

/* A row carries no identifier: its text is looked up.  The last of equal names wins, none is 0. */
int ItemIdOf(const StkMenuItems &stMenu, const QString &strText)
{
    int nItemId = 0;
    for (const StkItemClass &item : *stMenu.itemList) {
        qDebug("Item name = %s, Index=%d", TraceText(item.strItemText).constData(), item.nItemId);
        if (item.strItemText == strText)
            nItemId = item.nItemId;
    }
    return nItemId;
}

QString ToneFile(int nTone)
{
    return CommonUtils::GetPluginLibraryPath() + "/plugins/STKPlugin/tone_" +
        QString::number(nTone, 10);
}

} // namespace

/* ---- Life ---- */

STKDialog *STKDialog::m_pStkDialogInstance = nullptr;
ClipSound *STKDialog::m_pClipSoundSTK = nullptr;
QDialog *STKDialog::m_pMessageBox = nullptr;

STKDialog *STKDialog::Instance()
{
    TRACE_START();
    if (!m_pStkDialogInstance)
        m_pStkDialogInstance = new STKDialog;
    TRACE_END();
    return m_pStkDialogInstance;
}

void STKDialog::Destroy()
{
    TRACE_START();
    delete m_pStkDialogInstance;
    m_pStkDialogInstance = nullptr;
    TRACE_END();
}

STKDialog::STKDialog()
{
    TRACE_START();
    m_pStkLogic = STKLogic::CreateInstance();
    m_pStkThread = new STKThread;
    m_pStkInputDlg = STKInputDlg::StkInputDlgInstance();
    if (m_pStkLogic) {
        m_pStkLogic->RegisterSTKCB();
        // Delivered queued: the logic emits on the service's thread, and this is the GUI thread's.
        connect(m_pStkLogic, SIGNAL(DevAvailable(bool)), this, SLOT(onDeviceAvailable(bool)));
        connect(m_pStkLogic, SIGNAL(STKSetupMenu()), this, SLOT(onSTKSetupMenu()));
        connect(m_pStkLogic, SIGNAL(STKDisplayText()), this, SLOT(onSTKDisplayText()));
        connect(m_pStkLogic, SIGNAL(STKGetInkey()), this, SLOT(onSTKGetInkey()));
        connect(m_pStkLogic, SIGNAL(STKGetInput()), this, SLOT(onSTKGetInput()));
        connect(m_pStkLogic, SIGNAL(STKSetupCall()), this, SLOT(onSTKSetupCall()));
        connect(m_pStkLogic, SIGNAL(STKPlayTone()), this, SLOT(onSTKPlayTone()));
        connect(m_pStkLogic, SIGNAL(STKSelItem()), this, SLOT(onSTKSelItem()));
        connect(m_pStkLogic, SIGNAL(STKRefresh()), this, SLOT(onSTKRefresh()));
        connect(m_pStkLogic, SIGNAL(STKSendSS()), this, SLOT(onSTKSendSS()));
        connect(m_pStkLogic, SIGNAL(STKSendSMS()), this, SLOT(onSTKSendSMS()));
        connect(m_pStkLogic, SIGNAL(STKSendUSSD()), this, SLOT(onSTKSendUSSD()));
        connect(m_pStkLogic, SIGNAL(STKLaunchBrowser()), this, SLOT(onSTKLaunchBrowser()));
        connect(m_pStkLogic, SIGNAL(STKSetupIdleModeText()), this, SLOT(onSTKSetupIdleModeText()));
        connect(m_pStkLogic, SIGNAL(STKEndSession()), this, SLOT(onSTKEndSession()));
        connect(m_pStkLogic, SIGNAL(ShowMainMenu()), this, SLOT(onShowMainMenu()));
        connect(m_pStkLogic, SIGNAL(CloseInputDlg()), this, SLOT(onCloseInputDlg()));
    }
    connect(m_pStkThread, SIGNAL(ChangeCursor()), this, SLOT(onChangeCursor()));
    TRACE_END();
}

STKDialog::~STKDialog()
{
    TRACE_START();
    if (m_pStkThread && m_pStkThread->isRunning()) {
        m_pStkThread->m_bStop.store(true, std::memory_order_relaxed);
        // A thread that is only just starting clears the stop flag once more; the response flag
        // ends its wait as well, and nobody reads it after this.
        if (m_pStkLogic)
            m_pStkLogic->SetResponseVar(true);
        CommonUtils::WaitForThreadToStop(m_pStkThread, THREAD_STOP_SECONDS);
        delete m_pStkThread;
        m_pStkThread = nullptr;
    }
    // A thread that is not running is left behind, one small object for each of these: that is part
    // of the design.
    STKLogic::DestroyInst();
    STKInputDlg::DestroyInstance();
    if (m_pMessageBox)
        m_pMessageBox->close(); // nobody would take its answer
    m_pMessageBox = nullptr;
    forgetWindow();
    delete m_stMainMenu.itemList;
    delete m_stSubMenu.itemList;
    delete m_pClipSoundSTK;
    m_pClipSoundSTK = nullptr;
    TRACE_END();
}

void STKDialog::unSDKRegisterEvent()
{
    TRACE_FILE_FUNC("%s: %s called");
    // Also when another owner has destroyed the logic: the service holds functions, no object.
    STKLogic::UnresgisterSTKCB();
    TRACE_FILE_FUNC("%s: %s exit");
}

/* ---- Building and showing ---- */

bool STKDialog::ShowStkDlg(QWidget *parent, QRect &)
{
    TRACE_START();
    const bool bOk = initUI(parent);
    connect(m_pBtnBack, SIGNAL(clicked()), this, SLOT(onButtonClickBack()));
    connect(m_pBtnSelect, SIGNAL(clicked()), this, SLOT(onButtonClickSelect()));
    connect(m_pBtnClose, SIGNAL(clicked()), this, SLOT(onButtonClickClose()));
    connect(m_pTableWidget, SIGNAL(cellDoubleClicked(int, int)), this,
            SLOT(onCellDoubleClicked(int, int)));
    connect(m_pStkTimer, SIGNAL(timeout()), this, SLOT(onSTKTimeOut()));
    connect(m_pPlayToneTimer, SIGNAL(timeout()), this, SLOT(onSTKPlayToneTimeOut()));
    if (m_pStkLogic) {
        // Fetched and drawn once more, now in any case: initUI leaves a menu that cannot be fetched
        // alone, and with it the state of the showing before.
        m_pStkLogic->GetMainMenu(&m_stMainMenu);
        m_strTitle = m_stMainMenu.strTitle;
        showMainMenu();
    }
    if (m_pBtnClose)
        m_pBtnClose->setFocus(Qt::OtherFocusReason);
    if (m_pBtnBack)
        m_pBtnBack->setEnabled(false);
    if (m_pExtendDlg) {
        m_pExtendDlg->setFixedSize(380, 357);
        m_pExtendDlg->setWindowModality(Qt::WindowModal);
        m_pExtendDlg->show();
        CommonUtils::MoveCentre(m_pExtendDlg);
        m_pExtendDlg->setAttribute(Qt::WA_DeleteOnClose);
    }
    TRACE_END();
    return bOk;
}

/* The frame takes its widgets along.  The timers stay behind as this object's children, and a box
 * or a tone that is still up keeps its time. */
void STKDialog::forgetWindow()
{
    m_pTableWidget = nullptr;
    m_pBtnBack = nullptr;
    m_pExtendDlg = nullptr;
    m_pMainWidget = nullptr;
    m_pBtnSelect = nullptr;
    m_pBtnClose = nullptr;
    m_pStkTimer = nullptr;
    m_pPlayToneTimer = nullptr;
}

bool STKDialog::initUI(QWidget *parent)
{
    TRACE_START();
    forgetWindow();
    m_pExtendDlg = new (std::nothrow) STKExtendDlg(parent);
    if (TRACE_IS_NULL(m_pExtendDlg))
        return false;
    m_pExtendDlg->Instantiate(this);
    m_pMainWidget = new (std::nothrow) QWidget(m_pExtendDlg);
    m_pBtnBack = new (std::nothrow) QPushButton(m_pMainWidget);
    m_pBtnSelect = new (std::nothrow) QPushButton(m_pMainWidget);
    m_pBtnClose = new (std::nothrow) QPushButton(m_pMainWidget);
    m_pTableWidget = new (std::nothrow) STKTableWidget(m_pMainWidget);
    m_pStkTimer = new (std::nothrow) QTimer(this);
    m_pPlayToneTimer = new (std::nothrow) QTimer(this);
    if (!m_pMainWidget || !m_pBtnBack || !m_pBtnSelect || !m_pBtnClose || !m_pTableWidget ||
        !m_pStkTimer || !m_pPlayToneTimer) {
        TRACE_TIME_FILE_FUNC("%s: %s: %s: Memory Allocation Failed");
        return false;
    }
    m_pStkTimer->setObjectName(STK_TIMER_NAME);
    m_pPlayToneTimer->setObjectName(TONE_TIMER_NAME);
    m_pTableWidget->Instantiate(this);
    m_pExtendDlg->AddMainWidget(m_pMainWidget);
    SetStkUiText();
    setStkObjectName();
    setStkUiLayout();
    m_pTableWidget->setColumnCount(1);
    m_pTableWidget->verticalHeader()->hide();
    m_pTableWidget->horizontalHeader()->hide();
    m_pTableWidget->horizontalScrollBar()->hide();
    m_pTableWidget->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_pTableWidget->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_pTableWidget->setShowGrid(false);
    m_pTableWidget->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_pTableWidget->setColumnWidth(0, TABLE_WIDTH);
    m_pTableWidget->setSelectionMode(QAbstractItemView::SingleSelection);
    m_pTableWidget->setTabKeyNavigation(false);
    // A style's own minimum would make the rows higher.
    m_pTableWidget->verticalHeader()->setMinimumSectionSize(ROW_HEIGHT);
    if (m_pStkLogic && m_pStkLogic->GetMainMenu(&m_stMainMenu)) {
        m_strMenuState = "STK_MAINMENU";
        m_strTitle = m_stMainMenu.strTitle;
        showMainMenu();
    }
    m_pExtendDlg->setWindowTitle(m_strTitle);
    TRACE_END();
    return true;
}

void STKDialog::setStkUiLayout()
{
    TRACE_START();
    QVBoxLayout *pOuter = new (std::nothrow) QVBoxLayout;
    QHBoxLayout *pButtonRow = new (std::nothrow) QHBoxLayout;
    QHBoxLayout *pCloseRow = new (std::nothrow) QHBoxLayout;
    if (TRACE_FAILS(pOuter && pButtonRow && pCloseRow, "Memory Allocation Failed %s: %s: %s: "))
        return;
    m_pTableWidget->setFixedSize(TABLE_WIDTH, 250);
    pButtonRow->addWidget(m_pBtnBack);
    pButtonRow->addWidget(m_pBtnSelect);
    pButtonRow->setAlignment(Qt::AlignLeft);
    pButtonRow->setSpacing(20);
    pCloseRow->addWidget(m_pBtnClose);
    pCloseRow->insertSpacing(0, 55);
    pCloseRow->setAlignment(Qt::AlignRight);
    pButtonRow->addLayout(pCloseRow);
    pOuter->addWidget(m_pTableWidget);
    pOuter->addLayout(pButtonRow);
    pOuter->setAlignment(Qt::AlignCenter);
    pOuter->insertSpacing(1, 10);
    m_pMainWidget->setLayout(pOuter);
    TRACE_END();
}

void STKDialog::setStkObjectName()
{
    TRACE_START();
    if (!m_pExtendDlg || !m_pMainWidget || !m_pBtnBack || !m_pBtnSelect || !m_pBtnClose ||
        !m_pTableWidget) {
        TRACE_FILE_FUNC_TIME("Some widget is null  %s: %s: %s: ");
        return;
    }
    m_pExtendDlg->setObjectName("STKPlugin_Stkdialog");
    m_pMainWidget->setObjectName("STKPlugin_StkWidget");
    m_pBtnBack->setObjectName("STKPlugin_PushBtnBack");
    m_pBtnSelect->setObjectName("STKPlugin_PushBtnSelect");
    m_pBtnClose->setObjectName("STKPlugin_PushBtnClose");
    m_pTableWidget->setObjectName("STKPlugin_TableWidgetMenu");
    TRACE_END();
}

void STKDialog::SetStkUiText()
{
    TRACE_START();
    if (TRACE_FAILS(m_pBtnBack && m_pBtnSelect && m_pBtnClose, "Widgets id NULL %s: %s: %s: "))
        return;
    m_pBtnBack->setText(tr(QString("IDS_STK_BTN_BACK")));
    m_pBtnSelect->setText(tr(QString("IDS_STK_BTN_SELECT")));
    m_pBtnClose->setText(tr(QString("IDS_STK_BTN_CLOSE")));
    TRACE_END();
}

QString STKDialog::tr(QString id)
{
    TRACE_START();
    const QString strText = Change::tr(id, "STKPlugin");
    TRACE_END();
    return strText;
}

/* ---- Menus ---- */

bool STKDialog::deleteTableItems()
{
    TRACE_START();
    if (TRACE_FAILS(m_pTableWidget, "Table Widget is null %s: %s: %s: "))
        return false;
    for (int i = 0; i < m_pTableWidget->rowCount(); ++i)
        delete m_pTableWidget->takeItem(i, 0);
    m_pTableWidget->clear();
    TRACE_END();
    return true;
}

void STKDialog::fillTable(const StkMenuItems &stMenu)
{
    m_pTableWidget->setRowCount(stMenu.itemList->count());
    for (int i = 0; i < stMenu.itemList->count(); ++i) {
        const StkItemClass &item = stMenu.itemList->at(i);
        qDebug("Item name = %s, Index=%d", TraceText(item.strItemText).constData(), item.nItemId);
        m_pTableWidget->setItem(i, 0, new STKRowItem(item.strItemText));
        m_pTableWidget->setRowHeight(i, ROW_HEIGHT);
    }
}

void STKDialog::showMainMenu()
{
    TRACE_START();
    m_strMenuState = "STK_MAINMENU";
    if (deleteTableItems()) {
        if (!m_stMainMenu.strTitle.isEmpty())
            m_strTitle = m_stMainMenu.strTitle;
        m_pExtendDlg->setWindowTitle(m_stMainMenu.strTitle);
        fillTable(m_stMainMenu);
    }
    if (m_pBtnBack)
        m_pBtnBack->setEnabled(false);
    TRACE_END();
}

void STKDialog::showSubMenu()
{
    TRACE_START();
    m_strMenuState = "STK_SUBMENU";
    if (deleteTableItems()) {
        m_pExtendDlg->setWindowTitle(m_stSubMenu.strTitle.isEmpty() ? m_strTitle
                                                                    : m_stSubMenu.strTitle);
        fillTable(m_stSubMenu);
    }
    if (m_pBtnBack)
        m_pBtnBack->setEnabled(true);
    TRACE_FILE_FUNC_TIME("End  of %s: %s: %s: ");
}

void STKDialog::fetchAndShowMainMenu()
{
    if (!m_pStkLogic)
        return;
    m_pStkLogic->GetMainMenu(&m_stMainMenu);
    showMainMenu();
}

void STKDialog::onButtonClickSelect()
{
    TRACE_START();
    if (TRACE_IS_NULL(m_pTableWidget))
        return;
    QTableWidgetItem *pItem = m_pTableWidget->currentItem();
    if (!pItem || pItem->text().isEmpty())
        return;
    const int nItemId = ItemIdOf(m_stMainMenu, pItem->text());
    TRACE_VALUE_FILE_FUNC_TIME("Current Index value = %d %s: %s: %s: ", nItemId);
    if (m_strMenuState == "STK_UNKNOWN" || !m_pStkLogic)
        return;
    if (m_strMenuState == "STK_MAINMENU")
        followChoice(m_pStkLogic->SelectMainMenuItem(nItemId));
    else if (m_strMenuState == "STK_SUBMENU")
        subMenuSeleted(pItem);
    TRACE_END();
}

void STKDialog::subMenuSeleted(QTableWidgetItem *item)
{
    TRACE_START();
    if (TRACE_IS_NULL(item))
        return;
    if (TRACE_IS_NULL(m_pStkLogic))
        return;
    const int nItemId = ItemIdOf(m_stSubMenu, item->text());
    TRACE_VALUE_FILE_FUNC_TIME("Current Index value = %d %s: %s: %s: ", nItemId);
    followChoice(
        m_pStkLogic->SelectSubMenuItem("SUBMENU_ACTION_SELECT_ITEM", nItemId, m_stSubMenuCommand));
    TRACE_END();
}

void STKDialog::onButtonClickBack()
{
    TRACE_START();
    if (m_pStkLogic)
        followChoice(m_pStkLogic->SelectSubMenuItem("SUBMENU_ACTION_RETURN_BACK_ITEM", 0,
                                                    m_stSubMenuCommand));
    TRACE_END();
}

/* A card that refused the choice may have another menu by now. */
void STKDialog::followChoice(bool bSent)
{
    if (bSent)
        stkWaitforRespond(WAIT_AFTER_MENU_CHOICE);
    else
        fetchAndShowMainMenu();
}

void STKDialog::onButtonClickClose()
{
    TRACE_START();
    if (m_pStkLogic && !m_bEnterPressed)
        m_pStkLogic->GetMainMenu(&m_stMainMenu);
    bool bClosed = true;
    if (m_pExtendDlg) {
        QApplication::setOverrideCursor(QCursor(Qt::ArrowCursor));
        bClosed = m_pExtendDlg->close();
    }
    // A frame that turned the close into a selection is still there, also when the selection was
    // refused or answered so fast that no wait is running any more: it keeps its widgets.
    if (bClosed && m_pStkThread && !m_pStkThread->isRunning() && !m_bEnterPressed) {
        forgetWindow();
        if (m_strTimerType == "STK_DEVICE_TIMER") {
            m_strTimerType = ""; // it was to close the window
            stopTimers(STK_TIMER_NAME);
        }
    }
    TRACE_END();
}

void STKDialog::onCellDoubleClicked(int, int)
{
    TRACE_START();
    onButtonClickSelect();
    TRACE_END();
}

void STKDialog::onSTKSetupMenu()
{
    TRACE_START();
    fetchAndShowMainMenu();
    reportHandled();
    TRACE_END();
}

void STKDialog::onShowMainMenu()
{
    TRACE_START();
    fetchAndShowMainMenu();
    TRACE_END();
}

void STKDialog::onSTKSelItem()
{
    TRACE_START();
    if (m_pStkLogic) {
        const STKCommand stCommand = m_pStkLogic->CommandInProgress(MOVA_STKTYPE_SELECT_ITEM);
        const bool bFetched = m_pStkLogic->GetSubMenu(&m_stSubMenu, stCommand);
        if (bFetched) {
            m_stSubMenuCommand = stCommand;
            showSubMenu();
        }
        m_pStkLogic->UpdateCBReturnVal(bFetched);
    }
    TRACE_END();
}

void STKDialog::onSTKEndSession()
{
    TRACE_START();
    closeInputDlg();
    showMainMenu();
    reportHandled();
    TRACE_END();
}

/* ---- Waiting for the card ---- */

void STKDialog::stkWaitforRespond(int iTimeOut)
{
    TRACE_START();
    if (iTimeOut < 1)
        return;
    if (TRACE_FAILS(m_pStkLogic && m_pStkThread, "Logic instance or thread is null %s: %s: %s: "))
        return;
    m_pStkLogic->SetResponseVar(false);
    QApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
    m_pStkThread->SetTimeOut(iTimeOut);
    m_pStkThread->start(QThread::InheritPriority);
    TRACE_END();
}

void STKDialog::onChangeCursor()
{
    TRACE_START();
    if (m_pStkLogic && !m_pStkLogic->GetResponseVar()) {
        TRACE_FILE_FUNC_TIME("m_bRespondence value is false %s: %s: %s: ");
        if (m_pStkLogic->GetMainMenu(&m_stMainMenu))
            showMainMenu();
    }
    // The wait cursor is covered, not popped: the stack grows by two entries a wait.
    QApplication::setOverrideCursor(QCursor(Qt::ArrowCursor));
    TRACE_END();
}

/* ---- The shared timer, and the modem ---- */

/* Every showing has timers of its own, and those of the ones before live on.  At most one of a name
 * runs: starting one ends all others, and so does the end of what it ran for. */
void STKDialog::stopTimers(const char *szName)
{
    const QList<QTimer *> timers = findChildren<QTimer *>(szName);
    for (int i = 0; i < timers.count(); ++i)
        timers.at(i)->stop();
}

/* Without a time the timer is left as it is, and what it runs for becomes another. */
void STKDialog::useStkTimer(const QString &strTimerType, int nMilliseconds)
{
    m_strTimerType = strTimerType;
    if (nMilliseconds < 1)
        return;
    stopTimers(STK_TIMER_NAME);
    m_pStkTimer->start(nMilliseconds);
}

void STKDialog::onSTKTimeOut()
{
    TRACE_START();
    if (!m_pStkTimer)
        return;
    if (m_strTimerType == "STK_DEVICE_TIMER") {
        closeInputDlg();
        // The frame refuses to close while the card is waited for: the timer goes on.
        if (!m_pStkThread || !m_pStkThread->isRunning()) {
            m_strTimerType = "";
            stopTimers(STK_TIMER_NAME);
            onButtonClickClose();
        }
    } else if (m_strTimerType == "STK_MSGBOX_TIMER") {
        m_strTimerType = "";
        stopTimers(STK_TIMER_NAME);
        if (m_pMessageBox)
            m_pMessageBox->close();
        m_pMessageBox = nullptr;
    }
    TRACE_END();
}

void STKDialog::onDeviceAvailable(bool isAvaialable)
{
    TRACE_START();
    if (isAvaialable)
        fetchAndShowMainMenu();
    else if (m_pStkTimer)
        useStkTimer("STK_DEVICE_TIMER", 100);
    TRACE_END();
}

/* ---- Commands: what they share ---- */

void STKDialog::reportHandled()
{
    if (m_pStkLogic)
        m_pStkLogic->UpdateCBReturnVal(true);
}

/* The command that a slot is to present and to answer.  False when it has been: two of a type may
 * have been queued before the first was presented, and both their slots find the newer one. */
bool STKDialog::takeCommand(_MOVA_EN_STKTYPE enStkType, STKCommand *pCommand)
{
    *pCommand = m_pStkLogic->CommandInProgress(enStkType);
    if (*pCommand == STKCommand())
        return true; // called by hand: the card has not sent one yet
    if (m_mapTaken.value(enStkType) == *pCommand)
        return false;
    m_mapTaken.insert(enStkType, *pCommand);
    return true;
}

QWidget *STKDialog::dialogParent() const
{
    return m_pExtendDlg ? m_pExtendDlg->parentWidget() : nullptr;
}

/* ---- Display Text ---- */

/* While a box is up, inside whose event loop this runs, it stays as it is and a further text is
 * refused. */
void STKDialog::onSTKDisplayText()
{
    TRACE_START();
    STKCommand stCommand;
    if (!m_pStkLogic || !takeCommand(MOVA_STKTYPE_DISPLAY_TEXT, &stCommand))
        return;
    int nResult = QMessageBox::Cancel;
    if (!m_pTimeMsgDlg) {
        QString strText, strClearMode;
        m_nMsgDuration = 0;
        if (!m_pStkLogic->GetPromptText(&strText, &strClearMode, &m_nMsgDuration, stCommand))
            return;
        if (!m_pMsgTimer) {
            m_pMsgTimer = new QTimer(this);
            connect(m_pMsgTimer, SIGNAL(timeout()), this, SLOT(onMessageTimeOut()));
        }
        if (strClearMode == "STK_CLR_MODE_AUTO") {
            useStkTimer("STK_MSGBOX_TIMER", 0);
            if (!m_pStkTimer) {
                m_pStkLogic->UpdateCBReturnVal(false);
                return;
            }
            startCountdown();
        }
        const QPointer<STKDialog> pThis = this;
        nResult = showTimeMessageBox(strText);
        if (!pThis || !m_pStkLogic)
            return;
    }
    const _STK_UI_EN_TERMINALRESPONSE enResponse =
        nResult == QMessageBox::Ok ? STK_UI_TR_SUCCESS : STK_UI_TR_TERMINATED;
    if (!m_pStkLogic->SendNoDataResponse(MOVA_STKTYPE_DISPLAY_TEXT, enResponse, stCommand))
        TRACE_FILE_FUNC_TIME("SendNoDataResponse Failed %s: %s: %s: ");
    m_pStkLogic->UpdateCBReturnVal(true);
    TRACE_END();
}

void STKDialog::startCountdown()
{
    if (m_nMsgDuration == 0)
        m_nMsgDuration = DEFAULT_TEXT_SECONDS;
    m_pMsgTimer->start(1000);
    m_nMsgRemain = m_nMsgDuration;
}

/* Fills the frame m_pTimeMsgDlg. */
ClipMessageBox *STKDialog::buildTextBox(const QString &strText)
{
    ClipMessageBox *const pBox = new ClipMessageBox(m_pTimeMsgDlg);
    m_pTimeMsgDlg->AddMainWidget(pBox);
    m_pTimeMsgDlg->setWindowFlags(Qt::WindowCloseButtonHint);
    pBox->setWindowFlags(Qt::WindowStaysOnTopHint | Qt::FramelessWindowHint);
    m_pTimeMsgDlg->setWindowTitle("");
    pBox->setIcon(QMessageBox::NoIcon);
    pBox->setText(strText);
    QApplication::beep();
    m_pBtnOk = pBox->addButton(Change::tr("IDS_OK", HOST_CONTEXT), QMessageBox::YesRole);
    m_pBtnCancel = pBox->addButton(Change::tr("IDS_CANCEL", HOST_CONTEXT), QMessageBox::RejectRole);
    // The last one wins: Return must not accept a text that only just came up.
    pBox->setDefaultButton(m_pBtnOk);
    pBox->setDefaultButton(m_pBtnCancel);
    connect(pBox, SIGNAL(changeSize(QSize)), m_pTimeMsgDlg, SLOT(changeSize(QSize)));
    connect(pBox, SIGNAL(buttonClicked(QAbstractButton *)), m_pTimeMsgDlg, SLOT(close()));
    // Another window's event loop may run on top of this one and keep exec() from returning.
    if (m_pMsgTimer)
        connect(m_pTimeMsgDlg, SIGNAL(finished(int)), m_pMsgTimer, SLOT(stop()));
    m_pTimeMsgDlg->setWindowModality(Qt::WindowModal);
    return pBox;
}

int STKDialog::showTimeMessageBox(QString text)
{
    TRACE_START();
    QWidget *const pParent = CommonUtils::GetMainWindow();
    if (!m_pTimeMsgDlg)
        m_pTimeMsgDlg = new (std::nothrow)
            ExtendDialog(pParent, Qt::WindowCloseButtonHint, MESSAGE_WIDGET_TYPE);
    if (!m_pTimeMsgDlg)
        return QMessageBox::Cancel;
    QPointer<ClipMessageBox> pBox = buildTextBox(text);
    const QPointer<STKDialog> pThis = this;
    const QPointer<ExtendDialog> pFrame = m_pTimeMsgDlg;
    {
        STKKeyboardLoan loan;
        pFrame->exec();
    }
    if (!pThis) {
        delete pFrame;
        return QMessageBox::Cancel;
    }
    if (m_pMsgTimer) {
        m_pMsgTimer->stop();
        m_nMsgTicks = 0;
        m_nMsgRemain = m_nMsgDuration;
    }
    // Both are null when the box cleared itself, and that counts as OK.
    const bool bOk = pBox && pBox->clickedButton() == m_pBtnOk;
    delete pBox;
    delete m_pTimeMsgDlg;
    TRACE_END();
    return bOk ? QMessageBox::Ok : QMessageBox::Cancel;
}

/* One step of the countdown on the OK button. */
void STKDialog::onMessageTimeOut()
{
    if (TRACE_IS_NULL(m_pMsgTimer))
        return;
    if (TRACE_IS_NULL(m_pTimeMsgDlg))
        return;
    if (!m_pBtnOk) {
        m_pMsgTimer->stop();
        m_pTimeMsgDlg->close();
        return;
    }
    m_pBtnOk->setText(Change::tr("IDS_OK", HOST_CONTEXT) + " = " +
                      QString::number(m_nMsgRemain, 10));
    ++m_nMsgTicks;
    --m_nMsgRemain;
    if (m_nMsgTicks == m_nMsgDuration) {
        m_pMsgTimer->stop();
        m_pTimeMsgDlg->close();
        m_nMsgTicks = 0;
        m_pBtnOk = nullptr;
        m_nMsgRemain = m_nMsgDuration;
    }
}

/* ---- Play Tone ---- */

void STKDialog::onSTKPlayTone()
{
    TRACE_START();
    if (TRACE_FAILS(m_pStkLogic && m_pPlayToneTimer, "Logic/timer instance is null %s: %s: %s: "))
        return;
    STKCommand stCommand;
    if (!takeCommand(MOVA_STKTYPE_PLAY_TONE, &stCommand))
        return;
    MOVAPlayToneRequest request = {0, 0, ""};
    if (!m_pStkLogic->GetPlayTone(&request, stCommand)) {
        TRACE_FILE_FUNC_TIME("GetPlayTone() failed %s: %s: %s: ");
        m_pStkLogic->UpdateCBReturnVal(false);
        return;
    }
    QString strFile = ToneFile(request.nTone);
    if (!QFile::exists(strFile))
        strFile = ToneFile(FALLBACK_TONE);
    if (!QFile::exists(strFile)) {
        TRACE_FILE_FUNC_TIME("Sound file does not exists %s: %s: %s: ");
        m_pStkLogic->UpdateCBReturnVal(false);
        return;
    }
    playTone(strFile);
    stopTimers(TONE_TIMER_NAME);
    m_pPlayToneTimer->start(request.nDuration * 1000);
    if (!m_pStkLogic->SendNoDataResponse(MOVA_STKTYPE_PLAY_TONE, STK_UI_TR_SUCCESS, stCommand))
        TRACE_FILE_FUNC_TIME("SendNoDataResponse Failed of %s: %s: %s: ");
    m_pStkLogic->UpdateCBReturnVal(true);
    TRACE_END();
}

void STKDialog::playTone(QString strFileName)
{
    TRACE_END(); // the entry is marked by this line as well
    if (TRACE_FAILS(!strFileName.isEmpty(), "Filename is empty of %s: %s: %s: "))
        return;
    stopTone();
    delete m_pClipSoundSTK; // one that had ended, or never started
    m_pClipSoundSTK = new (std::nothrow) ClipSound(strFileName);
    if (!m_pClipSoundSTK)
        return;
    if (TRACE_FAILS(m_pClipSoundSTK->Play(), "Playing failed %s: %s: %s: "))
        return;
    connect(m_pClipSoundSTK, SIGNAL(finished()), this, SLOT(onPlayingFinished()));
    TRACE_END();
}

void STKDialog::stopTone()
{
    TRACE_START();
    if (m_pClipSoundSTK && m_pClipSoundSTK->IsPlaying()) {
        m_pClipSoundSTK->Stop();
        delete m_pClipSoundSTK;
        m_pClipSoundSTK = nullptr;
    }
    TRACE_END();
}

void STKDialog::onSTKPlayToneTimeOut()
{
    TRACE_START();
    if (m_pPlayToneTimer) {
        stopTimers(TONE_TIMER_NAME);
        stopTone();
    }
    TRACE_END();
}

void STKDialog::onPlayingFinished()
{
    TRACE_FILE_FUNC_LINE("Start of %s: %s: %d: ");
    stopTimers(TONE_TIMER_NAME);
    if (!m_pClipSoundSTK)
        return;
    delete m_pClipSoundSTK;
    m_pClipSoundSTK = nullptr;
    TRACE_FILE_FUNC_LINE("End of %s: %s: %d: ");
}

/* ---- Get Inkey and Get Input ---- */

void STKDialog::onSTKGetInkey()
{
    TRACE_START();
    if (TRACE_FAILS(m_pStkLogic, "Logic instance is null %s: %s: %s: "))
        return;
    STKCommand stCommand;
    if (!takeCommand(MOVA_STKTYPE_GET_INKEY, &stCommand))
        return;
    StkInKeyRequest request = {};
    if (!m_pStkLogic->GetInKeyRquest(&request, stCommand)) {
        TRACE_FILE_FUNC_TIME("GetInKeyRquest faied %s: %s: %s: ");
        m_pStkLogic->UpdateCBReturnVal(false);
        return;
    }
    if (request.nInputType == INPUT_TYPE_YES_NO) {
        if (!m_pStkTimer) {
            m_pStkLogic->UpdateCBReturnVal(false);
            return;
        }
        askYesNo(request, stCommand);
    } else {
        if (!m_pStkInputDlg)
            return;
        closeInputDlg(); // there is one input window: a newer question takes its place
        m_pStkInputDlg->SetInKeyRequest(request);
        showInputDlg(stCommand);
    }
    TRACE_END();
}

void STKDialog::onSTKGetInput()
{
    TRACE_START();
    if (TRACE_FAILS(m_pStkLogic, "Logic instance is NULL %s: %s: %s: "))
        return;
    STKCommand stCommand;
    if (!takeCommand(MOVA_STKTYPE_GET_INPUT, &stCommand))
        return;
    StkInKeyRequest request = {};
    if (!m_pStkLogic->GetInputRequest(&request, stCommand)) {
        TRACE_FILE_FUNC_TIME("GetInputRequest failed %s: %s: %s: ");
        m_pStkLogic->UpdateCBReturnVal(false);
        return;
    }
    if (!m_pStkInputDlg)
        return;
    closeInputDlg();
    m_pStkInputDlg->SetInputRequest(request);
    showInputDlg(stCommand);
    TRACE_END();
}

/* The card is waited for once an answer is out, unless a newer question has come up meanwhile: the
 * wait is that one's then. */
void STKDialog::showInputDlg(STKCommand stCommand)
{
    const int nQuestion = ++m_nQuestions;
    const QPointer<STKDialog> pThis = this;
    m_pStkInputDlg->ShowStkInputDlg(dialogParent(), stCommand);
    if (!pThis)
        return;
    if (m_pStkInputDlg && m_pStkInputDlg->GetLastError() == 0 && nQuestion == m_nQuestions)
        stkWaitforRespond(WAIT_AFTER_INPUT);
    reportHandled();
}

void STKDialog::askYesNo(const StkInKeyRequest &stRequest, STKCommand stCommand)
{
    const int nQuestion = ++m_nQuestions;
    useStkTimer("STK_MSGBOX_TIMER", stRequest.nDuration);
    QString strAnswer = "0";
    const QPointer<STKDialog> pThis = this;
    {
        STKKeyboardLoan loan;
        if (CommonUtils::ShowMessage(QMessageBox::NoIcon, dialogParent(), "", stRequest.strText,
                                     "IDS_YES", "IDS_NO", "", true, Qt::WindowCloseButtonHint,
                                     &m_pMessageBox, QString(), true) == QMessageBox::Ok)
            strAnswer = "1";
    }
    if (!pThis || !m_pStkLogic)
        return;
    const bool bAnswered = m_pStkLogic->CallStkAnswerInKey("STK_TYPE_OK", strAnswer, stCommand);
    if (bAnswered && nQuestion == m_nQuestions)
        stkWaitforRespond(WAIT_AFTER_INPUT);
    m_pStkLogic->UpdateCBReturnVal(bAnswered);
}

void STKDialog::closeInputDlg()
{
    if (m_pStkInputDlg && m_pStkInputDlg->IsDialogCreated())
        m_pStkInputDlg->CloseDlg();
}

void STKDialog::onCloseInputDlg()
{
    TRACE_START();
    closeInputDlg();
    TRACE_END();
}

/* ---- Commands that need no window ---- */

void STKDialog::onSTKSetupIdleModeText()
{
    TRACE_START();
    if (TRACE_FAILS(m_pStkLogic, "Logic inst is null %s: %s: %s: "))
        return;
    STKCommand stCommand;
    if (!takeCommand(MOVA_STKTYPE_SETUP_IDLE_MODE_TEXT, &stCommand))
        return;
    QString strText; // acknowledged and dropped: there is no idle screen to show it on
    if (!m_pStkLogic->GetIdleModePrompt(&strText, stCommand)) {
        TRACE_FILE_FUNC_TIME("GetIdleModePrompt() failed %s: %s: %s: ");
        m_pStkLogic->UpdateCBReturnVal(false);
        return;
    }
    if (!m_pStkLogic->SendNoDataResponse(MOVA_STKTYPE_SETUP_IDLE_MODE_TEXT, STK_UI_TR_SUCCESS,
                                         stCommand))
        TRACE_FILE_FUNC_TIME("SendNoDataResponse() failed %s: %s: %s: ");
    m_pStkLogic->UpdateCBReturnVal(true);
    TRACE_END();
}

void STKDialog::onSTKLaunchBrowser()
{
    TRACE_START();
    if (TRACE_FAILS(m_pStkLogic, "Logic instance is null %s: %s: %s: "))
        return;
    STKCommand stCommand;
    if (!takeCommand(MOVA_STKTYPE_LAUNCH_BROWSER, &stCommand))
        return;
    MOVALaunchBrowser request = {0, ""};
    if (!m_pStkLogic->GetLaunchBrowser(&request, stCommand)) {
        TRACE_FILE_FUNC_TIME("GetLaunchBrowser() failed %s: %s: %s: ");
        m_pStkLogic->UpdateCBReturnVal(false);
        return;
    }
    if (!request.strUrl.isEmpty())
        CommonUtils::OpenUrl(request.strUrl);
    if (!m_pStkLogic->SendNoDataResponse(MOVA_STKTYPE_LAUNCH_BROWSER, STK_UI_TR_SUCCESS, stCommand))
        TRACE_FILE_FUNC_TIME("SendNoDataResponse() failed %s: %s: %s: ");
    m_pStkLogic->UpdateCBReturnVal(true);
    TRACE_END();
}

/* The modem carries these three out and answers them. */

void STKDialog::onSTKSendUSSD()
{
    TRACE_START();
    reportHandled();
    TRACE_END();
}

void STKDialog::onSTKSendSMS()
{
    TRACE_START();
    reportHandled();
    TRACE_END();
}

void STKDialog::onSTKSendSS()
{
    TRACE_START();
    reportHandled();
    TRACE_END();
}

void STKDialog::onSTKRefresh()
{
    TRACE_START();
    if (m_pStkLogic)
        m_pStkLogic->UpdateCBReturnVal(
            m_pStkLogic->GetRefreshInfo(m_pStkLogic->CommandInProgress(MOVA_STKTYPE_REFRESH)));
    TRACE_END();
}

void STKDialog::onSTKSetupCall()
{
    TRACE_START();
    STKCommand stCommand;
    if (m_pStkLogic && takeCommand(MOVA_STKTYPE_SETUP_CALL, &stCommand)) {
        if (!m_pStkLogic->SendNoDataResponse(MOVA_STKTYPE_SETUP_CALL, STK_UI_TR_NOT_SUPPORTED,
                                             stCommand)) {
            TRACE_FILE_FUNC_TIME("SendNoDataResponse failed %s: %s: %s: ");
            m_pStkLogic->UpdateCBReturnVal(false);
            return;
        }
        m_pStkLogic->UpdateCBReturnVal(true);
    }
    TRACE_END();
}

/* ---- The list ---- */

STKTableWidget::STKTableWidget(QWidget *parent)
    : QTableWidget(parent)
{
    TRACE_TIME_FILE_FUNC("%s: %s: %s Entered");
}

void STKTableWidget::Instantiate(STKDialog *pStkDialog)
{
    m_pStkDialog = pStkDialog;
}

bool STKTableWidget::isWaiting() const
{
    return m_pStkDialog && m_pStkDialog->m_pStkThread && m_pStkDialog->m_pStkThread->isRunning();
}

void STKTableWidget::mousePressEvent(QMouseEvent *e)
{
    if (isWaiting())
        e->ignore();
    else
        QAbstractItemView::mousePressEvent(e);
}

/* A second double click on the row that was just chosen must not choose it again. */
void STKTableWidget::mouseDoubleClickEvent(QMouseEvent *e)
{
    if (isWaiting())
        e->ignore();
    else
        QAbstractItemView::mouseDoubleClickEvent(e);
}

void STKTableWidget::keyPressEvent(QKeyEvent *e)
{
    TRACE_TIME_FILE_FUNC("%s: %s: %s Start ");
    if (TRACE_IS_NULL(e))
        return;
    if (TRACE_IS_NULL(m_pStkDialog))
        return;
    if (isWaiting()) {
        e->ignore();
        return;
    }
    if (e->key() == Qt::Key_Return || e->key() == Qt::Key_Enter) {
        if (TRACE_IS_NULL(m_pStkDialog->m_pTableWidget))
            return;
        if (!m_pStkDialog->m_pTableWidget->selectedItems().isEmpty())
            m_pStkDialog->m_bEnterPressed = true;
    }
    QAbstractItemView::keyPressEvent(e);
    TRACE_TIME_FILE_FUNC("%s: %s: %s End ");
}

void STKTableWidget::mouseReleaseEvent(QMouseEvent *e)
{
    TRACE_TIME_FILE_FUNC("%s: %s: %s Start");
    QAbstractItemView::mouseReleaseEvent(e);
    if (indexAt(e->pos()).isValid()) {
        TRACE_TIME_FILE_FUNC("%s: %s: %s End ");
        return;
    }
    if (TRACE_IS_NULL(m_pStkDialog))
        return;
    if (TRACE_IS_NULL(m_pStkDialog->m_pTableWidget))
        return;
    if (TRACE_IS_NULL(m_pStkDialog->m_pBtnBack))
        return;
    m_pStkDialog->m_pTableWidget->setCurrentCell(-1, -1);
    if (m_pStkDialog->m_strMenuState == "STK_MAINMENU")
        m_pStkDialog->m_pBtnBack->setEnabled(false);
    TRACE_TIME_FILE_FUNC("%s: %s: %s End ");
}

/* ---- The frame ---- */

STKExtendDlg::STKExtendDlg(QWidget *parent)
    : ExtendDialog(parent, Qt::WindowCloseButtonHint, FRAME_WIDGET_TYPE)
{
}

void STKExtendDlg::Instantiate(STKDialog *pStkDialog)
{
    m_pStkDialog = pStkDialog;
}

void STKExtendDlg::reject()
{
    if (!m_pStkDialog)
        return;
    m_pStkDialog->onButtonClickClose();
    TRACE_TIME_FILE_FUNC("%s : %s : %s : Entered");
}

void STKExtendDlg::closeEvent(QCloseEvent *e)
{
    TRACE_TIME_FILE_FUNC("%s : %s : %s : Entered");
    if (!m_pStkDialog)
        return;
    if (m_pStkDialog->m_pStkThread && m_pStkDialog->m_pStkThread->isRunning()) {
        e->ignore();
        return;
    }
    if (m_pStkDialog->m_bEnterPressed) {
        e->ignore();
        m_pStkDialog->onButtonClickSelect();
        m_pStkDialog->m_bEnterPressed = false;
        return;
    }
    m_pStkDialog->onButtonClickClose();
}
