#include "FakeModemService.h"

#include <cstring>
#include <thread>

FakeModemService &FakeModemService::get()
{
    static FakeModemService instance;
    return instance;
}

void FakeModemService::reset()
{
    status.clear();
    mainTitle = subTitle = QString();
    mainItems.clear();
    subItems.clear();
    itemCountOverride = NoOverride;
    nullItems = false;
    std::memset(&playTone, 0, sizeof playTone);
    std::memset(&launchBrowser, 0, sizeof launchBrowser);
    std::memset(&inKey, 0, sizeof inKey);
    std::memset(&input, 0, sizeof input);
    std::memset(&promptText, 0, sizeof promptText);
    std::memset(&idleText, 0, sizeof idleText);
    stkCallback = nullptr;
    deviceCallback = nullptr;
    m_menusOut = 0;
    takeCalls();
}

QStringList FakeModemService::takeCalls()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const QStringList calls = m_calls;
    m_calls.clear();
    return calls;
}

int32_t FakeModemService::called(const char *function, const QString &arguments)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_calls << QString("%1(%2)").arg(function, arguments);
    const auto found = status.find(function);
    return found == status.end() ? 0 : found->second;
}

template <typename Record>
int32_t FakeModemService::menu(const char *function, const QString &arguments, Record *record,
                               const QString &title, const std::vector<Item> &items)
{
    const int32_t result = called(function, arguments);
    if (result != 0)
        return result;
    put(record->szTitle, title);
    record->sItemCount = static_cast<int16_t>(
        itemCountOverride == NoOverride ? static_cast<int>(items.size()) : itemCountOverride);
    record->pItems = nullItems ? nullptr : new MOVA_STKMenuItem[items.size() + 1];
    for (size_t i = 0; record->pItems && i < items.size(); ++i) {
        record->pItems[i].sItemId = items[i].id;
        put(record->pItems[i].szItemText, items[i].text);
    }
    ++m_menusOut;
    return 0;
}

template <typename Record>
int32_t FakeModemService::releaseMenu(const char *function, Record *record)
{
    delete[] record->pItems;
    --m_menusOut;
    return called(function, "");
}

namespace {

template <typename Call>
int onForeignThread(Call call)
{
    int result = 0;
    std::thread thread([&] { result = call(); });
    thread.join();
    return result;
}

FakeModemService &fake()
{
    return FakeModemService::get();
}

template <typename Record>
int32_t details(const char *function, int16_t cmdId, const Record &from, Record *to)
{
    const int32_t result = fake().called(function, QString::number(cmdId));
    if (result == 0)
        *to = from;
    return result;
}

int32_t answer(const char *function, int16_t cmdId, int32_t accepted, const uint16_t *text)
{
    return fake().called(
        function, QString("%1,%2,%3").arg(cmdId).arg(accepted).arg(QString::fromUtf16(text)));
}

} // namespace

int FakeModemService::notify(int type, int cmdId, int timeOut)
{
    MOVA_STKNotifyData data = {static_cast<_MOVA_EN_STKTYPE>(type), static_cast<int16_t>(cmdId), timeOut};
    return onForeignThread([&] { return stkCallback(0, &data); });
}

int FakeModemService::notifyNull()
{
    return onForeignThread([&] { return stkCallback(0, nullptr); });
}

int FakeModemService::device(int code)
{
    return onForeignThread([&] { return deviceCallback(code, nullptr); });
}

int32_t MOVA_STK_RegisterCallBack(MOVA_STKCallback callback)
{
    fake().stkCallback = callback;
    return fake().called("RegisterCallBack", "");
}

int32_t MOVA_STK_UnRegisterCallBack(MOVA_STKCallback callback)
{
    return fake().called("UnRegisterCallBack", callback == fake().stkCallback ? "same" : "other");
}

int32_t MOVA_DevSrv_RegisterDevMgrCallback(MOVA_DevMgrCallback callback)
{
    fake().deviceCallback = callback;
    return fake().called("RegisterDevMgrCallback", "");
}

int32_t MOVA_DevSrv_UnRegisterDevMgrCallback(MOVA_DevMgrCallback callback)
{
    return fake().called("UnRegisterDevMgrCallback", callback == fake().deviceCallback ? "same" : "other");
}

int32_t MOVA_STKSrv_GetMainMenu(MOVA_STKMenuInfo *menu)
{
    return fake().menu("GetMainMenu", "", menu, fake().mainTitle, fake().mainItems);
}

int32_t MOVA_STKSrv_ReleaseMenus(MOVA_STKMenuInfo *menu)
{
    return fake().releaseMenu("ReleaseMenus", menu);
}

int32_t MOVA_STKSrv_GetSubMenu(int16_t cmdId, MOVA_STKSubMenuInfo *menu)
{
    return fake().menu("GetSubMenu", QString::number(cmdId), menu, fake().subTitle, fake().subItems);
}

int32_t MOVA_STKSrv_ReleaseSubMenus(MOVA_STKSubMenuInfo *menu)
{
    return fake().releaseMenu("ReleaseSubMenus", menu);
}

int32_t MOVA_STKSrv_SelectMenuItem(int16_t menu, int16_t itemId)
{
    return fake().called("SelectMenuItem", QString("%1,%2").arg(menu).arg(itemId));
}

int32_t MOVA_STKSrv_SelectSubMenuItem(int16_t cmdId, int32_t action, int16_t itemId)
{
    return fake().called("SelectSubMenuItem", QString("%1,%2,%3").arg(cmdId).arg(action).arg(itemId));
}

int32_t MOVA_STKSrv_GetIdleModePrompt(int16_t cmdId, MOVA_STKIdleModeTextInfo *info)
{
    return details("GetIdleModePrompt", cmdId, fake().idleText, info);
}

int32_t MOVA_STKSrv_GetPlayTone(int16_t cmdId, MOVA_STKPlayToneInfo *info)
{
    return details("GetPlayTone", cmdId, fake().playTone, info);
}

int32_t MOVA_STKSrv_GetLaunchBrowser(int16_t cmdId, MOVA_STKLaunchBrowserInfo *info)
{
    return details("GetLaunchBrowser", cmdId, fake().launchBrowser, info);
}

int32_t MOVA_STKSrv_GetInKeyRequest(int16_t cmdId, MOVA_STKInKeyInfo *info)
{
    return details("GetInKeyRequest", cmdId, fake().inKey, info);
}

int32_t MOVA_STKSrv_GetInputRequest(int16_t cmdId, MOVA_STKInputInfo *info)
{
    return details("GetInputRequest", cmdId, fake().input, info);
}

int32_t MOVA_STKSrv_GetPromptText(int16_t cmdId, MOVA_STKPromptTextInfo *info)
{
    return details("GetPromptText", cmdId, fake().promptText, info);
}

int32_t MOVA_STKSrv_GetRefreshInfo(int16_t cmdId, MOVA_STKRefreshInfo *)
{
    return fake().called("GetRefreshInfo", QString::number(cmdId));
}

int32_t MOVA_STKSrv_AnswerInKey(int16_t cmdId, int32_t accepted, const uint16_t *text)
{
    return answer("AnswerInKey", cmdId, accepted, text);
}

int32_t MOVA_STKSrv_AnswerInput(int16_t cmdId, int32_t accepted, const uint16_t *text)
{
    return answer("AnswerInput", cmdId, accepted, text);
}

int32_t MOVA_STKSrv_SendNoDataResponse(int16_t cmdId, _STK_UI_EN_STKTYPE type,
                                       _STK_UI_EN_TERMINALRESPONSE response)
{
    return fake().called("SendNoDataResponse", QString("%1,%2,%3").arg(cmdId).arg(type).arg(response));
}
