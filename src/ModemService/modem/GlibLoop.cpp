#include "GlibLoop.h"

#include <algorithm>
#include <cstdint>

#include <sys/epoll.h>
#include <unistd.h>

// Other threads are to wake it also while nobody owns the context: the waiting is done elsewhere.
GlibLoop::GlibLoop()
    : m_context(g_main_context_new_with_flags(G_MAIN_CONTEXT_FLAGS_OWNERLESS_POLLING))
    , m_epoll(epoll_create1(EPOLL_CLOEXEC))
{
}

GlibLoop::~GlibLoop()
{
    ::close(m_epoll);
    g_main_context_unref(m_context);
}

GlibLoop::Use::Use(const GlibLoop &loop)
    : m_context(loop.m_context)
{
    g_main_context_push_thread_default(m_context);
}

GlibLoop::Use::~Use()
{
    g_main_context_pop_thread_default(m_context);
}

// What GLib starts from inside a callback belongs to the loop, too.
void GlibLoop::run()
{
    constexpr int Most = 1000; // of what never stops
    const Use use(*this);
    for (int i = 0; i < Most && g_main_context_iteration(m_context, FALSE); ++i) { }
}

void GlibLoop::runOnce(Time end)
{
    using namespace std::chrono;
    {
        const Use use(*this);
        if (g_main_context_iteration(m_context, FALSE))
            return;
    }
    const Time until = std::min(prepare(), end);
    const auto left = duration_cast<milliseconds>(until - steady_clock::now()).count();
    epoll_event event;
    epoll_wait(m_epoll, &event, 1, static_cast<int>(std::clamp<int64_t>(left + 1, 0, 1000)));
}

GlibLoop::Time GlibLoop::prepare()
{
    using namespace std::chrono;
    if (!g_main_context_acquire(m_context))
        return Time::max();
    gint priority = 0, timeout = -1;
    const bool ready = g_main_context_prepare(m_context, &priority);
    std::vector<GPollFD> descriptors(m_watched.size());
    gint count = 0;
    while (true) {
        count = g_main_context_query(m_context, G_MAXINT, &timeout, descriptors.data(),
                                     static_cast<gint>(descriptors.size()));
        if (static_cast<size_t>(count) <= descriptors.size())
            break;
        descriptors.resize(static_cast<size_t>(count));
    }
    g_main_context_release(m_context);
    descriptors.resize(static_cast<size_t>(count));
    watch(std::move(descriptors));
    if (ready)
        return Time{};
    return timeout < 0 ? Time::max() : steady_clock::now() + milliseconds(timeout);
}

void GlibLoop::watch(std::vector<GPollFD> descriptors)
{
    // A number may stand for another file than before, which epoll does not watch any more.
    for (const GPollFD &old : m_watched)
        epoll_ctl(m_epoll, EPOLL_CTL_DEL, old.fd, nullptr);
    for (const GPollFD &each : descriptors) {
        // GLib takes the events of poll(), which epoll has kept.
        epoll_event event{};
        event.events = each.events;
        event.data.fd = each.fd;
        epoll_ctl(m_epoll, EPOLL_CTL_ADD, each.fd, &event);
    }
    m_watched = std::move(descriptors);
}
