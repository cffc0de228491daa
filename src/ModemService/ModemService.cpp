#include "platform/ModemService.h"

#include <algorithm>
#include <utility>

#include "Service.h"
#include "session/ServiceStatus.h"
#include "session/Session.h"
#include "Text.h"

namespace {

constexpr int16_t TheMainMenu = 1;

// Items beyond those of the menu, where the card reports more than it has, are empty.
template <class Record> void fillMenu(const CommandMenu &menu, Record &record)
{
    const int16_t count = menu.reportedCount.value_or(static_cast<int16_t>(menu.items.size()));
    const size_t rows = std::max(menu.items.size(), static_cast<size_t>(std::max<int>(count, 0)));
    copyText(menu.title, record.szTitle);
    record.sItemCount = count;
    record.pItems = nullptr;
    if (menu.withoutItems || rows == 0)
        return;
    MOVA_STKMenuItem *items = new MOVA_STKMenuItem[rows](); // the release's
    for (size_t i = 0; i < menu.items.size(); ++i) {
        items[i].sItemId = menu.items[i].id;
        copyText(menu.items[i].text, items[i].szItemText);
    }
    record.pItems = items;
}

// Frees the items even where the card makes the release fail: nobody releases twice.
template <class Record> int32_t releaseMenu(ServiceFunction function, Record *record)
{
    if (!record)
        return theSession().refuseArgument(function);
    delete[] record->pItems;
    record->pItems = nullptr;
    record->sItemCount = 0;
    return theSession().releaseStatus(function);
}

void fill(const SelectItem &command, MOVA_STKSubMenuInfo &record)
{
    record.sDefaultItem = command.defaultItem;
    fillMenu(command.menu, record);
}

void fill(const SetUpIdleModeText &command, MOVA_STKIdleModeTextInfo &record)
{
    copyText(command.text, record.szText);
}

void fill(const PlayTone &command, MOVA_STKPlayToneInfo &record)
{
    record.nTone = command.tone;
    record.usDuration = command.duration;
    copyText(command.text, record.szText);
}

void fill(const LaunchBrowser &command, MOVA_STKLaunchBrowserInfo &record)
{
    record.nLaunchMode = command.launchMode;
    copyText(command.url, record.szUrl);
}

void fill(const GetInkey &command, MOVA_STKInKeyInfo &record)
{
    copyText(command.text, record.szText);
    record.nInputType = command.inputType;
    record.bOption = command.option;
    record.usDuration = command.duration;
}

void fill(const GetInput &command, MOVA_STKInputInfo &record)
{
    copyText(command.text, record.szText);
    record.nInputType = command.inputType;
    record.bEcho = command.echo;
    record.sMinLen = command.minLength;
    record.sMaxLen = command.maxLength;
    record.bOption = command.option;
    copyText(command.defaultText, record.szDefaultText);
}

void fill(const DisplayText &command, MOVA_STKPromptTextInfo &record)
{
    copyText(command.text, record.szText);
    record.nClearMode = command.clearMode;
    record.usDuration = command.duration;
}

void fill(const Refresh &command, MOVA_STKRefreshInfo &record)
{
    record = {};
    record.nQualifier = command.qualifier;
    std::copy_n(command.files.begin(), std::min(command.files.size(), sizeof record.abFiles),
                record.abFiles);
}

template <class Command, class Record>
int32_t fetch(ServiceFunction function, int16_t commandId, Record *record)
{
    if (!record)
        return theSession().refuseArgument(function, commandId);
    CommandBody body;
    const int32_t status = theSession().details(function, commandId, Command::Type, body);
    if (status == StatusSuccess)
        fill(std::get<Command>(body), *record);
    return status;
}

int32_t answer(ServiceFunction function, int16_t commandId, int32_t type, int32_t accepted,
               const uint16_t *text)
{
    TerminalResponse response;
    response.result =
        accepted ? TerminalResponse::Result::Performed : TerminalResponse::Result::Cancelled;
    response.text = toUtf8(text);
    return theSession().answer(function, commandId, type, std::move(response));
}

TerminalResponse::Result resultOf(int32_t response)
{
    switch (response) {
    case STK_UI_TR_TERMINATED:
        return TerminalResponse::Result::Terminated;
    case STK_UI_TR_SUCCESS:
        return TerminalResponse::Result::Performed;
    case STK_UI_TR_NOT_SUPPORTED:
        return TerminalResponse::Result::NotSupported;
    default:
        return TerminalResponse::Result::Other;
    }
}

} // namespace

int32_t MOVA_STK_RegisterCallBack(MOVA_STKCallback pfnCallback)
{
    return theSession().registerCallback(ServiceFunction::RegisterCallBack, Callbacks::Command,
                                         pfnCallback);
}

int32_t MOVA_DevSrv_RegisterDevMgrCallback(MOVA_DevMgrCallback pfnCallback)
{
    return theSession().registerCallback(ServiceFunction::RegisterDevMgrCallback, Callbacks::Device,
                                         pfnCallback);
}

int32_t MOVA_STK_UnRegisterCallBack(MOVA_STKCallback pfnCallback)
{
    return theSession().unregisterCallback(ServiceFunction::UnRegisterCallBack, Callbacks::Command,
                                           pfnCallback);
}

int32_t MOVA_DevSrv_UnRegisterDevMgrCallback(MOVA_DevMgrCallback pfnCallback)
{
    return theSession().unregisterCallback(ServiceFunction::UnRegisterDevMgrCallback,
                                           Callbacks::Device, pfnCallback);
}

int32_t MOVA_STKSrv_GetMainMenu(MOVA_STKMenuInfo *pMenu)
{
    if (!pMenu)
        return theSession().refuseArgument(ServiceFunction::GetMainMenu);
    CommandMenu menu;
    const int32_t status = theSession().mainMenu(menu);
    if (status == StatusSuccess)
        fillMenu(menu, *pMenu);
    return status;
}

int32_t MOVA_STKSrv_ReleaseMenus(MOVA_STKMenuInfo *pMenu)
{
    return releaseMenu(ServiceFunction::ReleaseMenus, pMenu);
}

int32_t MOVA_STKSrv_GetSubMenu(int16_t sCmdId, MOVA_STKSubMenuInfo *pMenu)
{
    return fetch<SelectItem>(ServiceFunction::GetSubMenu, sCmdId, pMenu);
}

int32_t MOVA_STKSrv_ReleaseSubMenus(MOVA_STKSubMenuInfo *pMenu)
{
    return releaseMenu(ServiceFunction::ReleaseSubMenus, pMenu);
}

int32_t MOVA_STKSrv_SelectMenuItem(int16_t sMenu, int16_t sItemId)
{
    return sMenu == TheMainMenu ? theSession().selectMenuItem(sItemId)
                                : theSession().refuseArgument(ServiceFunction::SelectMenuItem);
}

int32_t MOVA_STKSrv_SelectSubMenuItem(int16_t sCmdId, int32_t nAction, int16_t sItemId)
{
    return theSession().selectSubMenuItem(sCmdId, nAction, sItemId);
}

int32_t MOVA_STKSrv_GetIdleModePrompt(int16_t sCmdId, MOVA_STKIdleModeTextInfo *pInfo)
{
    return fetch<SetUpIdleModeText>(ServiceFunction::GetIdleModePrompt, sCmdId, pInfo);
}

int32_t MOVA_STKSrv_GetPlayTone(int16_t sCmdId, MOVA_STKPlayToneInfo *pInfo)
{
    return fetch<PlayTone>(ServiceFunction::GetPlayTone, sCmdId, pInfo);
}

int32_t MOVA_STKSrv_GetLaunchBrowser(int16_t sCmdId, MOVA_STKLaunchBrowserInfo *pInfo)
{
    return fetch<LaunchBrowser>(ServiceFunction::GetLaunchBrowser, sCmdId, pInfo);
}

int32_t MOVA_STKSrv_GetInKeyRequest(int16_t sCmdId, MOVA_STKInKeyInfo *pInfo)
{
    return fetch<GetInkey>(ServiceFunction::GetInKeyRequest, sCmdId, pInfo);
}

int32_t MOVA_STKSrv_GetInputRequest(int16_t sCmdId, MOVA_STKInputInfo *pInfo)
{
    return fetch<GetInput>(ServiceFunction::GetInputRequest, sCmdId, pInfo);
}

int32_t MOVA_STKSrv_GetPromptText(int16_t sCmdId, MOVA_STKPromptTextInfo *pInfo)
{
    return fetch<DisplayText>(ServiceFunction::GetPromptText, sCmdId, pInfo);
}

int32_t MOVA_STKSrv_GetRefreshInfo(int16_t sCmdId, MOVA_STKRefreshInfo *pInfo)
{
    return fetch<Refresh>(ServiceFunction::GetRefreshInfo, sCmdId, pInfo);
}

int32_t MOVA_STKSrv_AnswerInKey(int16_t sCmdId, int32_t bAccepted, const uint16_t *szText)
{
    return answer(ServiceFunction::AnswerInKey, sCmdId, GetInkey::Type, bAccepted, szText);
}

int32_t MOVA_STKSrv_AnswerInput(int16_t sCmdId, int32_t bAccepted, const uint16_t *szText)
{
    return answer(ServiceFunction::AnswerInput, sCmdId, GetInput::Type, bAccepted, szText);
}

int32_t MOVA_STKSrv_SendNoDataResponse(int16_t sCmdId, _STK_UI_EN_STKTYPE enStkType,
                                       _STK_UI_EN_TERMINALRESPONSE enResponse)
{
    TerminalResponse response;
    response.result = resultOf(enResponse);
    response.value = enResponse;
    return theSession().answer(ServiceFunction::SendNoDataResponse, sCmdId, enStkType,
                               std::move(response));
}
