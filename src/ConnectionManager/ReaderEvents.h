#ifndef READEREVENTS_H
#define READEREVENTS_H

#include <mutex>
#include <optional>

#include <QList>
#include <QObject>

#include "CardHost.h"

/// What the modem service tells of card readers, of the cards in them, and of the commands of any
/// card.  It comes from the service's threads and is handed to the GUI thread.
class ReaderEvents : public QObject {
    Q_OBJECT

public:
    ReaderEvents();
    ~ReaderEvents() override;

signals:
    // Emitted on the GUI thread.
    void readersChanged(const CardHost::ReaderList &list);
    void noticed(const CardHost::Notice &notice);
    /// A command of this type (MOVA_STKTYPE_...) is about to reach the plug-in.
    void commandComes(int type);
    /// The request that waits for its answer now, if any.
    void pinRequestChanged(const std::optional<CardHost::PinRequest> &request);

private:
    struct Pending {
        std::optional<CardHost::ReaderList> readers;
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
    int m_listener = 0;
};

#endif
