#ifndef GLIBLOOP_H
#define GLIBLOOP_H

#include <chrono>
#include <vector>

#include <glib.h>

/// A main context of GLib for one thread that waits on its own: it tells what it waits for instead
/// of waiting.
class GlibLoop {
public:
    using Time = std::chrono::steady_clock::time_point;

    GlibLoop();
    ~GlibLoop();
    GlibLoop(const GlibLoop &) = delete;
    GlibLoop &operator=(const GlibLoop &) = delete;

    /// For as long as it lives, what GLib starts on this thread belongs to the loop.
    class Use {
    public:
        explicit Use(const GlibLoop &loop);
        ~Use();
        Use(const Use &) = delete;
        Use &operator=(const Use &) = delete;

    private:
        GMainContext *const m_context;
    };

    /// Does what is to be done, without waiting, if not for ever.
    void run();
    /// The same, waiting until the time for the condition.
    template <class Condition> void runUntil(Time end, Condition isMet)
    {
        while (!isMet() && std::chrono::steady_clock::now() < end)
            runOnce(end);
    }
    /// When run() has something to do at the latest, and what becomes readable when it has before.
    Time prepare();
    int descriptor() const { return m_epoll; }

private:
    void runOnce(Time end);
    void watch(std::vector<GPollFD> descriptors);

    GMainContext *const m_context;
    const int m_epoll;
    std::vector<GPollFD> m_watched;
};

#endif
