#include "STKLogic.h"

#include <type_traits>

#include "TraceLog.h"

#define STK_TRACE_FILE "../../src/STKPlugin/STKLogic"

#define TRACE_STATUS(format, status) TRACE_VALUE_FILE_FUNC_TIME(format, static_cast<long>(status))

namespace {

/* What Qt takes for a unit of UTF-16: not the same type in each of its versions. */
using Utf16Unit = std::decay<decltype(QChar().unicode())>::type;

/* The text of a record: up to the first zero unit, or the whole array where it has none. */
template <int units> QString TextOf(const uint16_t (&szText)[units])
{
    int length = 0;
    while (length < units && szText[length] != 0)
        ++length;
    return QString::fromUtf16(reinterpret_cast<const Utf16Unit *>(szText), length);
}

void CopyIfBetween(int iLowest, int iHighest, int32_t value, int *pTarget)
{
    if (value >= iLowest && value <= iHighest)
        *pTarget = value;
}

void ClearMenu(StkMenuItems *pMenu)
{
    pMenu->itemList->clear();
    if (!pMenu->strTitle.isNull())
        pMenu->strTitle = QString();
}

/* Record: MOVA_STKMenuInfo or MOVA_STKSubMenuInfo. */
template <typename Record> void CopyMenu(const Record &record, StkMenuItems *pMenu)
{
    pMenu->strTitle = TextOf(record.szTitle);
    if (!record.pItems)
        return;
    for (int i = 0; i < record.sItemCount; ++i) {
        StkItemClass item;
        item.nItemId = record.pItems[i].sItemId;
        item.strItemText = TextOf(record.pItems[i].szItemText);
        pMenu->itemList->append(item);
    }
}

} // namespace

std::atomic<STKLogic *> STKLogic::m_pStkLogicInst(nullptr);

STKLogic *STKLogic::CreateInstance()
{
    TRACE_START();
    if (!m_pStkLogicInst.load())
        m_pStkLogicInst.store(new STKLogic);
    TRACE_END();
    return m_pStkLogicInst.load();
}

void STKLogic::DestroyInst()
{
    TRACE_START();
    // Null before it dies, so that a callback never finds an object that is half gone.
    delete m_pStkLogicInst.exchange(nullptr);
    TRACE_END();
}

STKLogic::STKLogic()
    : m_sCmdId(0)
    , m_bRet(true)
    , m_bRespondence(false)
    , m_astCommand()
{
    TRACE_START();
    TRACE_END();
}

STKLogic::~STKLogic()
{
    TRACE_START();
    TRACE_END();
}

STKCommand STKLogic::CommandInProgress(_MOVA_EN_STKTYPE enStkType) const
{
    return m_astCommand[enStkType].load(std::memory_order_relaxed);
}

void STKLogic::keepCommand(_MOVA_EN_STKTYPE enStkType, int16_t sCmdId)
{
    if (enStkType < MOVA_STKTYPE_SETUP_MENU || enStkType > MOVA_STKTYPE_SETUP_IDLE_MODE_TEXT)
        return;
    STKCommand stCommand = CommandInProgress(enStkType);
    stCommand.sCmdId = sCmdId;
    if (++stCommand.usNumber == 0)
        stCommand.usNumber = 1; // 0 is for none
    m_astCommand[enStkType].store(stCommand, std::memory_order_relaxed);
}

int16_t STKLogic::cmdIdOf(STKCommand stCommand) const
{
    return stCommand == STKCommand() ? m_sCmdId.load(std::memory_order_relaxed) : stCommand.sCmdId;
}

void STKLogic::RegisterSTKCB()
{
    TRACE_START();
    TRACE_FILE_FUNC_LINE("MOVA_STK_RegisterCallBack called %s: %s: %d: ");
    if (MOVA_STK_RegisterCallBack(OnSTKEventCB) != 0)
        TRACE_FILE_FUNC_TIME("MOVA_STK_RegisterCallBack failed %s: %s: %s: ");
    TRACE_FILE_FUNC_LINE("MOVA_DevSrv_RegisterDevMgrCallback called %s: %s: %d: ");
    if (MOVA_DevSrv_RegisterDevMgrCallback(OnDeviceEventCB) != 0)
        TRACE_FILE_FUNC_LINE("MOVA_DevSrv_RegisterDevMgrCallback failed %s: %s: %d: ");
    TRACE_END();
}

void STKLogic::UnresgisterSTKCB()
{
    TRACE_START();
    if (MOVA_STK_UnRegisterCallBack(OnSTKEventCB) != 0)
        TRACE_FILE_FUNC_TIME("MOVA_STK_UnRegisterCallBack failed %s: %s: %s: ");
    if (MOVA_DevSrv_UnRegisterDevMgrCallback(OnDeviceEventCB) != 0)
        TRACE_FILE_FUNC_TIME("MOVA_DevSrv_UnRegisterDevMgrCallback failed %s: %s: %s: ");
    TRACE_END();
}

/* On the service's thread.  The signals reach the main window queued, so the verdict that is read
 * after the dispatch is the one of the handler before. */
int STKLogic::OnSTKEventCB(int, void *pNotifyData)
{
    TRACE_START();
    STKLogic *const pLogic = m_pStkLogicInst.load();
    if (!pLogic)
        return 0;
    pLogic->m_bRespondence.store(true, std::memory_order_relaxed);
    if (!pNotifyData) {
        TRACE_FILE_FUNC_TIME("pNotifyData is null %s: %s: %s: ");
        return 0;
    }
    const MOVA_STKNotifyData &data = *static_cast<const MOVA_STKNotifyData *>(pNotifyData);
    pLogic->m_sCmdId.store(data.sCmdId, std::memory_order_relaxed);
    if (data.bTimeOut == 1) {
        TRACE_FILE_FUNC_TIME("STK TimeOut %s: %s: %s: ");
        emit pLogic->CloseInputDlg();
        emit pLogic->STKSetupMenu();
        TRACE_END();
        return 0;
    }
    pLogic->keepCommand(data.enStkType, data.sCmdId);
    pLogic->stkEventSwitchCase(data.enStkType);
    if (!pLogic->m_bRet.load(std::memory_order_relaxed)) {
        TRACE_FILE_FUNC_TIME("m_bRet is false %s: %s: %s: ");
        if (MOVA_STKSrv_SendNoDataResponse(data.sCmdId, data.enStkType, STK_UI_TR_TERMINATED) != 0)
            TRACE_FILE_FUNC_TIME("MOVA_STKSrv_SendNoDataResponse Failed %s: %s: %s: ");
        emit pLogic->ShowMainMenu();
    }
    TRACE_END();
    return 0;
}

int STKLogic::OnDeviceEventCB(int iCode, void *)
{
    TRACE_START();
    STKLogic *const pLogic = m_pStkLogicInst.load();
    if (!pLogic)
        return 1;
    if (iCode == MOVA_DEV_EVENT_DEVICE_READY)
        emit pLogic->DevAvailable(true);
    else if (iCode == MOVA_DEV_EVENT_DEVICE_REMOVED || iCode == MOVA_DEV_EVENT_DEVICE_NOT_READY)
        emit pLogic->DevAvailable(false);
    TRACE_END();
    return 1;
}

void STKLogic::stkEventSwitchCase(_MOVA_EN_STKTYPE enStkType)
{
    TRACE_START();
    TRACE_VALUE_FILE_FUNC_TIME("enStkType value is %d,  %s: %s: %s: ", static_cast<int>(enStkType));
    switch (enStkType) {
    case MOVA_STKTYPE_SETUP_MENU:
        emit STKSetupMenu();
        break;
    case MOVA_STKTYPE_DISPLAY_TEXT:
        emit STKDisplayText();
        break;
    case MOVA_STKTYPE_GET_INKEY:
        emit STKGetInkey();
        break;
    case MOVA_STKTYPE_GET_INPUT:
        emit STKGetInput();
        break;
    case MOVA_STKTYPE_SETUP_CALL:
        emit STKSetupCall();
        break;
    case MOVA_STKTYPE_PLAY_TONE:
        emit STKPlayTone();
        break;
    case MOVA_STKTYPE_SELECT_ITEM:
        emit STKSelItem();
        break;
    case MOVA_STKTYPE_REFRESH:
        emit STKRefresh();
        break;
    case MOVA_STKTYPE_SEND_SS: // presented exactly like a short message; STKSendSS has no emitter
    case MOVA_STKTYPE_SEND_SMS:
        emit STKSendSMS();
        break;
    case MOVA_STKTYPE_SEND_USSD:
        emit STKSendUSSD();
        break;
    case MOVA_STKTYPE_LAUNCH_BROWSER:
        emit STKLaunchBrowser();
        break;
    case MOVA_STKTYPE_SETUP_IDLE_MODE_TEXT:
        emit STKSetupIdleModeText();
        break;
    case MOVA_STKTYPE_END_SESSION:
        emit STKEndSession();
        break;
    default: // none of the toolkit's commands: nobody is told
        break;
    }
    TRACE_END();
}

void STKLogic::UpdateCBReturnVal(bool bRet)
{
    TRACE_START();
    m_bRet.store(bRet, std::memory_order_relaxed);
    TRACE_VALUE_FILE_FUNC_TIME("Updated vale is %d, %s: %s: %s: ", static_cast<int>(bRet));
    TRACE_END();
}

bool STKLogic::GetResponseVar()
{
    const int32_t bRespondence = m_bRespondence.load(std::memory_order_relaxed);
    TRACE_VALUE_FILE_FUNC_TIME("Start of with m_bRespondence  value= %d, %s: %s: %s: ",
                               bRespondence);
    return bRespondence;
}

void STKLogic::SetResponseVar(bool bRespondence)
{
    TRACE_START();
    m_bRespondence.store(bRespondence, std::memory_order_relaxed);
    TRACE_END();
}

bool STKLogic::GetMainMenu(StkMenuItems *pMenu)
{
    TRACE_START();
    ClearMenu(pMenu);
    MOVA_STKMenuInfo stMenu = {};
    TRACE_FILE_FUNC_TIME("Calling  MOVA_STKSrv_GetMainMenu()%s: %s: %s: ");
    const int32_t status = MOVA_STKSrv_GetMainMenu(&stMenu);
    TRACE_STATUS("MOVA_STKSrv_GetMainMenu() Returned = %li: %s: %s: %s: ", status);
    if (status != 0)
        return false;
    CopyMenu(stMenu, pMenu);
    TRACE_FILE_FUNC_TIME("Calling  MOVA_STKSrv_ReleaseMenus()%s: %s: %s: ");
    if (MOVA_STKSrv_ReleaseMenus(&stMenu) != 0)
        TRACE_FILE_FUNC_TIME("MOVA_STKSrv_ReleaseMenus() failed : %s: %s: %s: ");
    TRACE_END();
    return true;
}

bool STKLogic::GetSubMenu(StkMenuItems *pMenu, STKCommand stCommand)
{
    TRACE_START();
    ClearMenu(pMenu);
    MOVA_STKSubMenuInfo stMenu = {};
    TRACE_FILE_FUNC_TIME("Calling  MOVA_STKSrv_GetSubMenu()%s: %s: %s: ");
    const int32_t status = MOVA_STKSrv_GetSubMenu(cmdIdOf(stCommand), &stMenu);
    TRACE_STATUS("MOVA_STKSrv_GetSubMenu() Returned = %li: %s: %s: %s: ", status);
    if (status != 0)
        return false;
    CopyMenu(stMenu, pMenu);
    TRACE_FILE_FUNC_TIME("Calling  MOVA_STKSrv_ReleaseSubMenus()%s: %s: %s: ");
    if (MOVA_STKSrv_ReleaseSubMenus(&stMenu) != 0)
        TRACE_FILE_FUNC_TIME("MOVA_STKSrv_ReleaseSubMenus() failed : %s: %s: %s: ");
    TRACE_END();
    return true;
}

bool STKLogic::SelectMainMenuItem(int index)
{
    TRACE_START();
    TRACE_VALUE_FILE_FUNC_TIME("Calling  MOVA_STKSrv_SelectMenuItem(%d) %s: %s: %s: ", index);
    // The first argument names the one main menu of the card, not a command.
    const int32_t status = MOVA_STKSrv_SelectMenuItem(1, static_cast<int16_t>(index));
    TRACE_STATUS("MOVA_STKSrv_SelectMenuItem() returned %li: %s: %s: %s: ", status);
    if (status == 0)
        TRACE_FILE_FUNC_TIME("MOVA_STKSrv_SelectMenuItem() success : %s: %s: %s: ");
    TRACE_END();
    return status == 0;
}

bool STKLogic::SelectSubMenuItem(QString action, int index, STKCommand stCommand)
{
    TRACE_START();
    int32_t nAction = MOVA_SUBMENU_ACTION_NONE;
    if (action == "SUBMENU_ACTION_SELECT_ITEM")
        nAction = MOVA_SUBMENU_ACTION_SELECT;
    else if (action == "SUBMENU_ACTION_RETURN_BACK_ITEM")
        nAction = MOVA_SUBMENU_ACTION_BACK;
    TRACE_VALUE_FILE_FUNC_TIME("Calling  MOVA_STKSrv_SelectSubMenuItem(%d) %s: %s: %s: ", index);
    const int32_t status =
        MOVA_STKSrv_SelectSubMenuItem(cmdIdOf(stCommand), nAction, static_cast<int16_t>(index));
    TRACE_STATUS("MOVA_STKSrv_SelectSubMenuItem() returned %li: %s: %s: %s: ", status);
    if (status == 0)
        TRACE_FILE_FUNC_TIME("MOVA_STKSrv_SelectSubMenuItem() success : %s: %s: %s: ");
    TRACE_END();
    return status == 0;
}

bool STKLogic::GetIdleModePrompt(QString *pText, STKCommand stCommand)
{
    TRACE_START();
    MOVA_STKIdleModeTextInfo stInfo = {};
    TRACE_FILE_FUNC_TIME("Calling MOVA_STKSrv_GetIdleModePrompt(): %s: %s: %s: ");
    const int32_t status = MOVA_STKSrv_GetIdleModePrompt(cmdIdOf(stCommand), &stInfo);
    TRACE_STATUS("MOVA_STKSrv_GetIdleModePrompt() returned %li: %s: %s: %s: ", status);
    if (status != 0)
        return false;
    TRACE_FILE_FUNC_TIME("SDK success %s: %s: %s: ");
    *pText = TextOf(stInfo.szText);
    TRACE_END();
    return true;
}

bool STKLogic::GetPlayTone(MOVAPlayToneRequest *pReq, STKCommand stCommand)
{
    TRACE_START();
    MOVA_STKPlayToneInfo stInfo = {};
    TRACE_FILE_FUNC_TIME("Calling MOVA_STKSrv_GetPlayTone(): %s: %s: %s: ");
    const int32_t status = MOVA_STKSrv_GetPlayTone(cmdIdOf(stCommand), &stInfo);
    TRACE_STATUS("MOVA_STKSrv_GetPlayTone() returned %li: %s: %s: %s: ", status);
    if (status != 0)
        return false;
    TRACE_FILE_FUNC_TIME("SDK success %s: %s: %s: ");
    pReq->nTone = stInfo.nTone;
    pReq->nDuration = stInfo.usDuration;
    pReq->strText = TextOf(stInfo.szText);
    TRACE_END();
    return true;
}

bool STKLogic::GetLaunchBrowser(MOVALaunchBrowser *pReq, STKCommand stCommand)
{
    TRACE_START();
    MOVA_STKLaunchBrowserInfo stInfo = {};
    TRACE_FILE_FUNC_TIME("Calling MOVA_STKSrv_GetLaunchBrowser(): %s: %s: %s: ");
    const int32_t status = MOVA_STKSrv_GetLaunchBrowser(cmdIdOf(stCommand), &stInfo);
    TRACE_STATUS("MOVA_STKSrv_GetLaunchBrowser() returned %li: %s: %s: %s: ", status);
    if (status != 0)
        return false;
    TRACE_FILE_FUNC_TIME("SDK success %s: %s: %s: ");
    // 1 is reserved in ETSI TS 102 223 clause 8.6.
    if (stInfo.nLaunchMode != 1)
        CopyIfBetween(0, 3, stInfo.nLaunchMode, &pReq->nLaunchMode);
    pReq->strUrl = TextOf(stInfo.szUrl);
    TRACE_END();
    return true;
}

bool STKLogic::GetInKeyRquest(StkInKeyRequest *pReq, STKCommand stCommand)
{
    TRACE_START();
    MOVA_STKInKeyInfo stInfo = {};
    TRACE_FILE_FUNC_TIME("Calling MOVA_STKSrv_GetInKeyRequest(): %s: %s: %s: ");
    const int32_t status = MOVA_STKSrv_GetInKeyRequest(cmdIdOf(stCommand), &stInfo);
    TRACE_STATUS("MOVA_STKSrv_GetInKeyRequest() returned %li: %s: %s: %s: ", status);
    if (status != 0)
        return false;
    TRACE_FILE_FUNC_TIME("SDK success %s: %s: %s: ");
    CopyIfBetween(0, 3, stInfo.nInputType, &pReq->nInputType);
    CopyIfBetween(0, 1, stInfo.bOption, &pReq->bOption);
    pReq->nDuration = stInfo.usDuration;
    pReq->strText = TextOf(stInfo.szText);
    TRACE_END();
    return true;
}

bool STKLogic::GetInputRequest(StkInKeyRequest *pReq, STKCommand stCommand)
{
    TRACE_START();
    MOVA_STKInputInfo stInfo = {};
    TRACE_FILE_FUNC_TIME("Calling MOVA_STKSrv_GetInputRequest(): %s: %s: %s: ");
    const int32_t status = MOVA_STKSrv_GetInputRequest(cmdIdOf(stCommand), &stInfo);
    TRACE_STATUS("MOVA_STKSrv_GetInputRequest() returned %li: %s: %s: %s: ", status);
    if (status != 0)
        return false;
    TRACE_FILE_FUNC_TIME("SDK success %s: %s: %s: ");
    CopyIfBetween(0, 3, stInfo.nInputType, &pReq->nInputType);
    CopyIfBetween(0, 1, stInfo.bEcho, &pReq->bEcho);
    pReq->nMinLen = stInfo.sMinLen;
    pReq->nMaxLen = stInfo.sMaxLen;
    CopyIfBetween(0, 1, stInfo.bOption, &pReq->bOption);
    pReq->strDefaultText = TextOf(stInfo.szDefaultText);
    pReq->strText = TextOf(stInfo.szText);
    TRACE_END();
    return true;
}

bool STKLogic::GetPromptText(QString *pText, QString *pClearMode, int *pDuration,
                             STKCommand stCommand)
{
    TRACE_START();
    MOVA_STKPromptTextInfo stInfo = {};
    TRACE_FILE_FUNC_TIME("Calling  MOVA_STKSrv_GetPromptText() %s: %s: %s: ");
    const int32_t status = MOVA_STKSrv_GetPromptText(cmdIdOf(stCommand), &stInfo);
    TRACE_STATUS("MOVA_STKSrv_GetPromptText() returned %li: %s: %s: %s: ", status);
    if (status != 0)
        return false;
    *pText = TextOf(stInfo.szText);
    *pClearMode = stInfo.nClearMode == 0 ? "STK_CLR_MODE_AUTO" : "";
    *pDuration = stInfo.usDuration;
    TRACE_END();
    return true;
}

bool STKLogic::GetRefreshInfo(STKCommand stCommand)
{
    TRACE_START();
    MOVA_STKRefreshInfo stInfo = {};
    TRACE_FILE_FUNC_TIME("Calling  MOVA_STKSrv_GetRefreshInfo() %s: %s: %s: ");
    const int32_t status = MOVA_STKSrv_GetRefreshInfo(cmdIdOf(stCommand), &stInfo);
    TRACE_STATUS("MOVA_STKSrv_GetRefreshInfo() returned %li: %s: %s: %s: ", status);
    if (status != 0)
        return false;
    TRACE_FILE_FUNC_TIME("MOVA_STKSrv_GetRefreshInfo() success: %s: %s: %s: ");
    TRACE_END();
    return true;
}

bool STKLogic::CallStkAnswerInKey(QString result, QString answer, STKCommand stCommand)
{
    TRACE_START();
    const int32_t bAccepted = result == "STK_TYPE_OK";
    TRACE_VALUE_FILE_FUNC_TIME("Calling MOVA_STKSrv_AnswerInKey(%s): %s: %s: %s: ",
                               TraceText(answer).constData());
    const int32_t status = MOVA_STKSrv_AnswerInKey(cmdIdOf(stCommand), bAccepted, answer.utf16());
    TRACE_STATUS("MOVA_STKSrv_AnswerInKey() returned %li: %s: %s: %s: ", status);
    if (status != 0)
        return false;
    TRACE_FILE_FUNC_TIME("MOVA_STKSrv_AnswerInKey() success: %s: %s: %s: ");
    TRACE_END();
    return true;
}

bool STKLogic::CallStkAnswerInput(QString result, QString answer, STKCommand stCommand)
{
    TRACE_START();
    const int32_t bAccepted = result == "STK_TYPE_OK";
    TRACE_VALUE_FILE_FUNC_TIME("Calling MOVA_STKSrv_AnswerInput(%s): %s: %s: %s: ",
                               TraceText(answer).constData());
    const int32_t status = MOVA_STKSrv_AnswerInput(cmdIdOf(stCommand), bAccepted, answer.utf16());
    // The line shares its text with the key's answer.
    TRACE_STATUS("MOVA_STKSrv_AnswerInKey() returned %li: %s: %s: %s: ", status);
    if (status != 0)
        return false;
    TRACE_FILE_FUNC_TIME("MOVA_STKSrv_AnswerInput() success: %s: %s: %s: ");
    TRACE_END();
    return true;
}

bool STKLogic::SendNoDataResponse(_STK_UI_EN_STKTYPE type, _STK_UI_EN_TERMINALRESPONSE response,
                                  STKCommand stCommand)
{
    TRACE_START();
    TRACE_FILE_FUNC_TIME("Calling MOVA_STKSrv_SendNoDataResponse(): %s: %s: %s: ");
    const int32_t status = MOVA_STKSrv_SendNoDataResponse(cmdIdOf(stCommand), type, response);
    TRACE_STATUS("MOVA_STKSrv_SendNoDataResponse() returned %li: %s: %s: %s: ", status);
    if (status != 0)
        return false;
    TRACE_FILE_FUNC_TIME("MOVA return success : %s: %s: %s: ");
    TRACE_END();
    return true;
}
