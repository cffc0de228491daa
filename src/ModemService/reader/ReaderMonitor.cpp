#include "ReaderMonitor.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

namespace {

using std::chrono::milliseconds;

constexpr milliseconds RetryPeriod{1000};

bool operator==(const ReaderList &a, const ReaderList &b)
{
    const auto same = [](const Reader &one, const Reader &other) {
        return one.name == other.name && one.state == other.state;
    };
    const auto problem = [](const ReaderList &list) {
        return list.problem ? list.problem->id : std::string();
    };
    return problem(a) == problem(b) &&
        std::equal(a.readers.begin(), a.readers.end(), b.readers.begin(), b.readers.end(), same);
}

} // namespace

ReaderMonitor::ReaderMonitor(ReaderListener publish)
    : m_publish(std::move(publish))
    , m_thread(&ReaderMonitor::run, this)
{
}

ReaderMonitor::~ReaderMonitor()
{
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_stop = true;
        m_changed.notify_all();
        // A wait that has not quite begun does not hear the first call.
        while (!m_ended) {
            if (m_waiting)
                SCardCancel(m_waiting);
            m_changed.wait_for(lock, milliseconds(20));
        }
    }
    m_thread.join();
}

void ReaderMonitor::run()
{
    std::optional<ReaderList> published;
    bool waited = true;
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_stop) {
        lock.unlock();
        const ReaderList list = m_context.readers();
        if (!published || !(*published == list))
            m_publish(list);
        published = list;
        lock.lock();
        if (m_stop)
            break;
        const bool failed = !std::exchange(waited, true);
        if (failed || !m_context.isEstablished()) {
            m_changed.wait_for(lock, RetryPeriod);
            continue;
        }
        m_waiting = m_context.handle();
        lock.unlock();
        waited = m_context.waitForChange();
        lock.lock();
        m_waiting = 0;
    }
    m_ended = true;
    m_changed.notify_all();
}
