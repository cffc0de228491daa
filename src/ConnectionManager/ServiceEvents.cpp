#include "ServiceEvents.h"

#include <utility>

ServiceEvents::ServiceEvents()
{
    m_readerListener = CardHost::addReaderListener([this](const CardHost::ReaderList &list) {
        add([&](Pending &pending) { pending.readers = list; });
    });
    m_modemListener =
        CardHost::addModemListener([this](const std::vector<CardHost::Modem> &modems) {
            add([&](Pending &pending) { pending.modems = modems; });
        });
    CardHost::setNoticeListener([this](const CardHost::Notice &notice) {
        add([&](Pending &pending) { pending.notices << notice; });
    });
    // The plug-in hears of a command through the GUI thread's queue, and so behind this.
    CardHost::setCommandListener(
        [this](int type) { add([&](Pending &pending) { pending.commands << type; }); });
    CardHost::setPinListener([this](const std::optional<CardHost::PinRequest> &request) {
        add([&](Pending &pending) { pending.pin = request; });
    });
}

ServiceEvents::~ServiceEvents()
{
    CardHost::removeReaderListener(m_readerListener);
    CardHost::removeModemListener(m_modemListener);
    CardHost::setNoticeListener(nullptr);
    CardHost::setPinListener(nullptr);
    CardHost::setCommandListener(nullptr);
}

template <class Change> void ServiceEvents::add(Change change)
{
    const std::lock_guard lock(m_mutex);
    if (!m_pending.isAnnounced)
        QMetaObject::invokeMethod(this, "deliver", Qt::QueuedConnection);
    m_pending.isAnnounced = true;
    change(m_pending);
}

void ServiceEvents::deliver()
{
    Pending pending;
    {
        const std::lock_guard lock(m_mutex);
        std::swap(pending, m_pending);
    }
    if (pending.readers)
        emit readersChanged(*pending.readers);
    if (pending.modems)
        emit modemsChanged(*pending.modems);
    for (const CardHost::Notice &notice : qAsConst(pending.notices))
        emit noticed(notice);
    for (const int type : qAsConst(pending.commands))
        emit commandComes(type);
    if (pending.pin)
        emit pinRequestChanged(*pending.pin);
}
