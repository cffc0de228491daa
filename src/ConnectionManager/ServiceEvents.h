#ifndef SERVICEEVENTS_H
#define SERVICEEVENTS_H

#include <mutex>
#include <optional>

#include <QList>
#include <QObject>

#include "CardHost.h"

/// What the modem service tells of card readers and modems, of the cards in them, and of the
/// commands of any card.  It comes from the service's threads and is handed to the GUI thread.
class ServiceEvents : public QObject {
    Q_OBJECT

public:
    ServiceEvents();
    ~ServiceEvents() override;

signals:
    // Emitted on the GUI thread.
    void readersChanged(const CardHost::ReaderList &list);
    void modemsChanged(const std::vector<CardHost::Modem> &modems);
    void noticed(const CardHost::Notice &notice);
    /// A command of this type (MOVA_STKTYPE_...) is about to reach the plug-in.
    void commandComes(int type);
    /// The request that waits for its answer now, if any.
    void pinRequestChanged(const std::optional<CardHost::PinRequest> &request);

private:
    struct Pending {
        std::optional<CardHost::ReaderList> readers;
        std::optional<std::vector<CardHost::Modem>> modems;
        QList<CardHost::Notice> notices;
        QList<int> commands;
        std::optional<std::optional<CardHost::PinRequest>> pin;
        bool isAnnounced = false;
    };

    template <class Change> void add(Change change);
    // Called by its name: the thread sanitizer cannot see that Qt's queue orders a functor's
    // memory.
    Q_INVOKABLE void deliver();

    std::mutex m_mutex;
    Pending m_pending;
    int m_readerListener = 0;
    int m_modemListener = 0;
};

#endif
