#include "FakeModemService.h"

#include <mutex>
#include <thread>
#include <utility>

namespace {

std::mutex callsMutex;
QStringList calls;

int32_t called(const char *function, const QString &arguments = QString())
{
    if (fakeModem.onCall)
        return fakeModem.onCall(function, arguments.section(',', 0, 0).toInt());
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
    record->sItemCount = static_cast<int16_t>(
        count == fakeModem.NoOverride ? static_cast<int>(items.size()) : count);
    record->pItems = fakeModem.nullItems ? nullptr : new MOVA_STKMenuItem[items.size() + 1];
    for (size_t i = 0; record->pItems && i < items.size(); ++i) {
        record->pItems[i].sItemId = items[i].id;
        fakeModem.put(record->pItems[i].szItemText, items[i].text);
    }
    ++fakeModem.menusOut;
    return 0;
}

template <typename Record> int32_t releaseMenu(const char *function, Record *record)
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
    if (const auto act = std::exchange(fakeModem.duringDetails, nullptr))
        act();
    return result;
}

int32_t answer(const char *function, int16_t cmdId, int32_t accepted, const uint16_t *text)
{
    return called(function,
                  QString("%1,%2,%3")
                      .arg(cmdId)
                      .arg(accepted)
                      .arg(QString::fromUtf16(reinterpret_cast<const char16_t *>(text))));
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
    MOVA_STKNotifyData data = {static_cast<_MOVA_EN_STKTYPE>(type), static_cast<int16_t>(cmdId),
                               timeOut};
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

/* A function of the library: its area and name, its parameters, and what it returns. */
#define SERVICE(area, name, parameters, result)                                                    \
    int32_t MOVA_##area##_##name parameters                                                        \
    {                                                                                              \
        const char *const function = #name;                                                        \
        return result;                                                                             \
    }

SERVICE(STK, RegisterCallBack, (MOVA_STKCallback f), (fakeModem.stkCallback = f, called(function)))
SERVICE(STK, UnRegisterCallBack, (MOVA_STKCallback f),
        unregister(function, f, fakeModem.stkCallback))
SERVICE(DevSrv, RegisterDevMgrCallback, (MOVA_DevMgrCallback f),
        (fakeModem.deviceCallback = f, called(function)))
SERVICE(DevSrv, UnRegisterDevMgrCallback, (MOVA_DevMgrCallback f),
        unregister(function, f, fakeModem.deviceCallback))
SERVICE(STKSrv, GetMainMenu, (MOVA_STKMenuInfo * to),
        menu(function, "", to, fakeModem.mainTitle, fakeModem.mainItems))
SERVICE(STKSrv, ReleaseMenus, (MOVA_STKMenuInfo * from), releaseMenu(function, from))
SERVICE(STKSrv, GetSubMenu, (int16_t id, MOVA_STKSubMenuInfo *to),
        menu(function, QString::number(id), to, fakeModem.subTitle, fakeModem.subItems))
SERVICE(STKSrv, ReleaseSubMenus, (MOVA_STKSubMenuInfo * from), releaseMenu(function, from))
SERVICE(STKSrv, SelectMenuItem, (int16_t menu, int16_t item),
        called(function, QString("%1,%2").arg(menu).arg(item)))
SERVICE(STKSrv, SelectSubMenuItem, (int16_t id, int32_t action, int16_t item),
        called(function, QString("%1,%2,%3").arg(id).arg(action).arg(item)))
SERVICE(STKSrv, GetIdleModePrompt, (int16_t id, MOVA_STKIdleModeTextInfo *to),
        details(function, id, fakeModem.idleText, to))
SERVICE(STKSrv, GetPlayTone, (int16_t id, MOVA_STKPlayToneInfo *to),
        details(function, id, fakeModem.playTone, to))
SERVICE(STKSrv, GetLaunchBrowser, (int16_t id, MOVA_STKLaunchBrowserInfo *to),
        details(function, id, fakeModem.launchBrowser, to))
SERVICE(STKSrv, GetInKeyRequest, (int16_t id, MOVA_STKInKeyInfo *to),
        details(function, id, fakeModem.inKey, to))
SERVICE(STKSrv, GetInputRequest, (int16_t id, MOVA_STKInputInfo *to),
        details(function, id, fakeModem.input, to))
SERVICE(STKSrv, GetPromptText, (int16_t id, MOVA_STKPromptTextInfo *to),
        details(function, id, fakeModem.promptText, to))
SERVICE(STKSrv, GetRefreshInfo, (int16_t id, MOVA_STKRefreshInfo *),
        called(function, QString::number(id)))
SERVICE(STKSrv, AnswerInKey, (int16_t id, int32_t accepted, const uint16_t *text),
        answer(function, id, accepted, text))
SERVICE(STKSrv, AnswerInput, (int16_t id, int32_t accepted, const uint16_t *text),
        answer(function, id, accepted, text))
SERVICE(STKSrv, SendNoDataResponse,
        (int16_t id, _STK_UI_EN_STKTYPE type, _STK_UI_EN_TERMINALRESPONSE response),
        called(function, QString("%1,%2,%3").arg(id).arg(type).arg(response)))
