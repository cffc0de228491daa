#ifndef FAKEMODEMSERVICE_H
#define FAKEMODEMSERVICE_H

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include <QString>
#include <QStringList>

#include "platform/ModemService.h"

/* A modem service under the test's control: it records every call with its arguments, answers with
 * what the test put there, and calls the callbacks from a thread of its own. */
class FakeModemService
{
public:
    struct Item
    {
        int16_t id;
        QString text;
    };

    static FakeModemService &get();
    void reset();

    /* Every call since the last take, in order, as "Name(argument,argument)" without the prefix.  The
     * four registrations and the releases are recorded too. */
    QStringList takeCalls();

    /* Status of a function, by its name without "MOVA_", "MOVA_STKSrv_" or the like; 0 by default. */
    std::map<std::string, int32_t> status;

    QString mainTitle, subTitle;
    std::vector<Item> mainItems, subItems;
    int itemCountOverride; /* reported instead of the number of items where it is not NoOverride */
    bool nullItems;
    enum { NoOverride = -99999 };

    MOVA_STKPlayToneInfo playTone;
    MOVA_STKLaunchBrowserInfo launchBrowser;
    MOVA_STKInKeyInfo inKey;
    MOVA_STKInputInfo input;
    MOVA_STKPromptTextInfo promptText;
    MOVA_STKIdleModeTextInfo idleText;

    /* Menus that were handed out and not released. */
    int menusOut() const { return m_menusOut; }

    /* Each calls the registered callback on a thread of its own, returns when that has returned, and
     * gives what it returned. */
    int notify(int type, int cmdId, int timeOut = 0);
    int notifyNull();
    int device(int code);

    template <size_t units>
    static void put(uint16_t (&array)[units], const QString &text)
    {
        for (size_t i = 0; i < units; ++i)
            array[i] = i < static_cast<size_t>(text.size()) ? text.at(static_cast<int>(i)).unicode() : 0;
    }

    /* For the functions of the library. */
    int32_t called(const char *function, const QString &arguments);
    template <typename Record>
    int32_t menu(const char *function, const QString &arguments, Record *record, const QString &title,
                 const std::vector<Item> &items);
    template <typename Record>
    int32_t releaseMenu(const char *function, Record *record);

    MOVA_STKCallback stkCallback;
    MOVA_DevMgrCallback deviceCallback;

private:
    std::mutex m_mutex;
    QStringList m_calls;
    int m_menusOut;
};

#endif
