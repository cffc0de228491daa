#include "FakeModemService.h"

#include <mutex>
#include <thread>
#include <utility>

namespace {

std::mutex callsMutex;
QStringList calls;

int32_t called(const char *function, const QString &arguments = QString())
{
    std::lock_guard<std::mutex> lock(callsMutex);
    calls << QString("%1(%2)").arg(function, arguments);
    return fakeModem.status.value(function);
}

template <typename Record>
int32_t menu(const char *function, const QString &arguments, Record *record, const QString &title,
             const std::vector<FakeModemService::Item> &items)
{
    const int32_t result = called(function, arguments);
    if (result != 0)
        return result;
    const int count = fakeModem.itemCountOverride;
    fakeModem.put(record->szTitle, title);
    record->sItemCount = static_cast<int16_t>(count == fakeModem.NoOverride ? static_cast<int>(items.size()) : count);
    record->pItems = fakeModem.nullItems ? nullptr : new MOVA_STKMenuItem[items.size() + 1];
    for (size_t i = 0; record->pItems && i < items.size(); ++i) {
        record->pItems[i].sItemId = items[i].id;
        fakeModem.put(record->pItems[i].szItemText, items[i].text);
    }
    ++fakeModem.menusOut;
    return 0;
}

template <typename Record>
int32_t releaseMenu(const char *function, Record *record)
{
    delete[] record->pItems;
    --fakeModem.menusOut;
    return called(function);
}

template <typename Record>
int32_t details(const char *function, int16_t cmdId, const Record &from, Record *to)
{
    const int32_t result = called(function, QString::number(cmdId));
    if (result == 0)
        *to = from;
    return result;
}

int32_t answer(const char *function, int16_t cmdId, int32_t accepted, const uint16_t *text)
{
    return called(function, QString("%1,%2,%3").arg(cmdId).arg(accepted).arg(QString::fromUtf16(text)));
}

int onForeignThread(int (*callback)(int, void *), int code, void *data)
{
    int result = 0;
    std::thread([&] { result = callback(code, data); }).join();
    return result;
}

template <typename Callback>
int32_t unregister(const char *function, Callback callback, Callback registered)
{
    return called(function, callback == registered ? "same" : "other");
}

} // namespace

QStringList FakeModemService::takeCalls()
{
    std::lock_guard<std::mutex> lock(callsMutex);
    return std::exchange(calls, QStringList());
}

int FakeModemService::notify(int type, int cmdId, int timeOut)
{
    MOVA_STKNotifyData data = {static_cast<_MOVA_EN_STKTYPE>(type), static_cast<int16_t>(cmdId), timeOut};
    return onForeignThread(stkCallback, 0, &data);
}

int FakeModemService::notifyNull()
{
    return onForeignThread(stkCallback, 0, nullptr);
}

int FakeModemService::device(int code)
{
    return onForeignThread(deviceCallback, code, nullptr);
}

/* A function of the library: its name without "MOVA_", its parameters, and what it returns. */
#define SERVICE(name, parameters, result) \
    int32_t MOVA_##name parameters        \
    {                                     \
        return result;                    \
    }

SERVICE(STK_RegisterCallBack, (MOVA_STKCallback f), (fakeModem.stkCallback = f, called("RegisterCallBack")))
SERVICE(STK_UnRegisterCallBack, (MOVA_STKCallback f), unregister("UnRegisterCallBack", f, fakeModem.stkCallback))
SERVICE(DevSrv_RegisterDevMgrCallback, (MOVA_DevMgrCallback f),
        (fakeModem.deviceCallback = f, called("RegisterDevMgrCallback")))
SERVICE(DevSrv_UnRegisterDevMgrCallback, (MOVA_DevMgrCallback f),
        unregister("UnRegisterDevMgrCallback", f, fakeModem.deviceCallback))
SERVICE(STKSrv_GetMainMenu, (MOVA_STKMenuInfo * to),
        menu("GetMainMenu", "", to, fakeModem.mainTitle, fakeModem.mainItems))
SERVICE(STKSrv_ReleaseMenus, (MOVA_STKMenuInfo * from), releaseMenu("ReleaseMenus", from))
SERVICE(STKSrv_GetSubMenu, (int16_t id, MOVA_STKSubMenuInfo *to),
        menu("GetSubMenu", QString::number(id), to, fakeModem.subTitle, fakeModem.subItems))
SERVICE(STKSrv_ReleaseSubMenus, (MOVA_STKSubMenuInfo * from), releaseMenu("ReleaseSubMenus", from))
SERVICE(STKSrv_SelectMenuItem, (int16_t menu, int16_t item),
        called("SelectMenuItem", QString("%1,%2").arg(menu).arg(item)))
SERVICE(STKSrv_SelectSubMenuItem, (int16_t id, int32_t action, int16_t item),
        called("SelectSubMenuItem", QString("%1,%2,%3").arg(id).arg(action).arg(item)))
SERVICE(STKSrv_GetIdleModePrompt, (int16_t id, MOVA_STKIdleModeTextInfo *to),
        details("GetIdleModePrompt", id, fakeModem.idleText, to))
SERVICE(STKSrv_GetPlayTone, (int16_t id, MOVA_STKPlayToneInfo *to), details("GetPlayTone", id, fakeModem.playTone, to))
SERVICE(STKSrv_GetLaunchBrowser, (int16_t id, MOVA_STKLaunchBrowserInfo *to),
        details("GetLaunchBrowser", id, fakeModem.launchBrowser, to))
SERVICE(STKSrv_GetInKeyRequest, (int16_t id, MOVA_STKInKeyInfo *to), details("GetInKeyRequest", id, fakeModem.inKey, to))
SERVICE(STKSrv_GetInputRequest, (int16_t id, MOVA_STKInputInfo *to), details("GetInputRequest", id, fakeModem.input, to))
SERVICE(STKSrv_GetPromptText, (int16_t id, MOVA_STKPromptTextInfo *to),
        details("GetPromptText", id, fakeModem.promptText, to))
SERVICE(STKSrv_GetRefreshInfo, (int16_t id, MOVA_STKRefreshInfo *), called("GetRefreshInfo", QString::number(id)))
SERVICE(STKSrv_AnswerInKey, (int16_t id, int32_t accepted, const uint16_t *text),
        answer("AnswerInKey", id, accepted, text))
SERVICE(STKSrv_AnswerInput, (int16_t id, int32_t accepted, const uint16_t *text),
        answer("AnswerInput", id, accepted, text))
SERVICE(STKSrv_SendNoDataResponse, (int16_t id, _STK_UI_EN_STKTYPE type, _STK_UI_EN_TERMINALRESPONSE response),
        called("SendNoDataResponse", QString("%1,%2,%3").arg(id).arg(type).arg(response)))
