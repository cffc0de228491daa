#include "SessionThread.h"

#include <utility>

SessionThread::SessionThread(Work work)
    : m_work(std::move(work))
    , m_thread(&SessionThread::run, this)
{
}

SessionThread::~SessionThread()
{
    stop(std::chrono::milliseconds(0));
    m_thread.join();
}

void SessionThread::post(Request request)
{
    Lock lock(m_mutex);
    m_requests.push_back(std::move(request));
    if (m_self != std::this_thread::get_id()) // else it looks before it waits
        m_alarm.ring();
}

bool SessionThread::hasRequests()
{
    Lock lock(m_mutex);
    return !m_requests.empty();
}

void SessionThread::discard(std::shared_ptr<void> object)
{
    Lock lock(m_mutex);
    m_discarded.push_back(std::move(object));
    m_alarm.ring();
}

bool SessionThread::stop(std::chrono::milliseconds patience)
{
    Lock lock(m_mutex);
    m_stop = true;
    m_alarm.ring();
    return m_hasEnded.wait_for(lock, patience, [this] { return m_ended; });
}

void SessionThread::run()
{
    Lock lock(m_mutex);
    m_self = std::this_thread::get_id();
    while (true) {
        if (carryOut(lock))
            continue;
        if (m_stop)
            break;
        lock.unlock();
        const std::optional<Pause> pause = m_work();
        lock.lock();
        if (!pause || !m_requests.empty())
            continue;
        lock.unlock();
        // Whoever rings before this is not missed: the bell keeps ringing until it is waited for.
        m_alarm.wait(pause->until, pause->descriptor);
        lock.lock();
    }
    m_ended = true;
    m_hasEnded.notify_all();
}

bool SessionThread::carryOut(Lock &lock)
{
    if (m_requests.empty() && m_discarded.empty())
        return false;
    auto discarded = std::exchange(m_discarded, {});
    Request request;
    if (!m_requests.empty()) {
        request = std::move(m_requests.front());
        m_requests.pop_front();
    }
    lock.unlock();
    discarded.clear();
    if (request)
        request();
    request = nullptr; // may hold the last reference to something of this thread's
    lock.lock();
    return true;
}
