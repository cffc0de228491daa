#ifndef FAKEMODEMSERVICE_H
#define FAKEMODEMSERVICE_H

#include <functional>
#include <vector>

#include <QHash>
#include <QString>
#include <QStringList>

#include "platform/ModemService.h"

/* A modem service under the test's control: it records every call with its arguments, answers with
 * what the test put there, and calls the callbacks from a thread of its own. */
struct FakeModemService {
    struct Item {
        int16_t id;
        QString text;
    };

    /* Every call since the last take, in order, as "Name(argument,argument)" without the prefix.
     * The four registrations and the releases are recorded too. */
    QStringList takeCalls();

    /* Status of a function, by its name without "MOVA_", "MOVA_STKSrv_" or the like; 0 by default.
     */
    QHash<QString, int32_t> status;

    /* Called instead, where there is one, with the function and its first argument; it says the
     * status, and may put what the call hands out.  Such calls are not recorded. */
    std::function<int32_t(const QString &function, int id)> onCall;

    QString mainTitle, subTitle;
    std::vector<Item> mainItems, subItems;
    enum { NoOverride = -99999 };
    int itemCountOverride =
        NoOverride; /* reported instead of the number of items where it is another */
    bool nullItems = false;
    int menusOut = 0; /* menus that were handed out and not released */

    /* Runs once, inside the next call that hands out details. */
    std::function<void()> duringDetails;

    MOVA_STKPlayToneInfo playTone = {};
    MOVA_STKLaunchBrowserInfo launchBrowser = {};
    MOVA_STKInKeyInfo inKey = {};
    MOVA_STKInputInfo input = {};
    MOVA_STKPromptTextInfo promptText = {};
    MOVA_STKIdleModeTextInfo idleText = {};

    MOVA_STKCallback stkCallback = nullptr;
    MOVA_DevMgrCallback deviceCallback = nullptr;

    /* Each calls the registered callback on a thread of its own, returns when that has returned,
     * and gives what it returned. */
    int notify(int type, int cmdId, int timeOut = 0);
    int notifyNull();
    int device(int code);

    template <size_t units> static void put(uint16_t (&array)[units], const QString &text)
    {
        for (size_t i = 0; i < units; ++i)
            array[i] =
                i < static_cast<size_t>(text.size()) ? text.at(static_cast<int>(i)).unicode() : 0;
    }
};

inline FakeModemService fakeModem;

#endif
