#ifndef CALLBACKS_H
#define CALLBACKS_H

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

#include <sys/types.h>

#include "platform/ModemService.h"

/// The terminal's two callbacks: which are registered, and when each may be called.
///
/// One thread calls them, one at a time.  What follows from an answer is never told before the call
/// that gave the answer has returned, and its caller had the time to note that; an answer given
/// inside a callback is no such case.
///
/// One mutex guards everything but the listener, and is never held while somebody is called.
class Callbacks {
public:
    enum Kind { Command, Device };
    using Callback = int (*)(int, void *);
    using Listener = std::function<void(int32_t type)>;

    // From any thread, and from inside a callback.

    /// One of each kind: a second one fails, the same one again is a success.
    int32_t add(Kind kind, Callback callback);
    /// None will start any more...
    int32_t remove(Kind kind, Callback callback);
    /// ...and none is running on another thread when this returns.
    void waitForReturn(Kind kind);
    /// Nobody is called any more.
    void removeAll();
    /// Heard on the calling thread, right before the command callback is called with a command.  No
    /// call of the listener before runs after this returns.
    void setListener(Listener listener);

    /// A call that answers the card, from its beginning to its return.
    class Answering {
    public:
        explicit Answering(Callbacks &callbacks);
        ~Answering();
        Answering(const Answering &) = delete;
        Answering &operator=(const Answering &) = delete;

    private:
        Callbacks &m_callbacks;
        const bool m_counts;
    };

    /// There is another card, or none: it waits to be told, and nothing is held back for long.
    void hurry();

    // On the thread that calls.

    /// Waits until no call answers, and none has returned just now, longer while its thread still
    /// runs.
    void holdBack();
    /// `isCommand`: a proactive command, and no word about the session.
    void callCommand(MOVA_STKNotifyData data, bool isCommand);
    /// Holds back by itself what tells that the card or the modem is gone.
    void callDevice(int code);

private:
    using Clock = std::chrono::steady_clock;
    using Lock = std::unique_lock<std::mutex>;

    void holdBack(Lock &lock);
    Callback begin(Kind kind, Lock &lock);
    void end(Lock &lock);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::array<Callback, 2> m_callbacks{};
    std::optional<Kind> m_running; // the one that is being called
    std::thread::id m_caller; // the thread inside a callback
    int m_answering = 0; // calls under way that answer, from outside
    pid_t m_answerer = 0; // thread of the last one that returned, until something was held back
    Clock::time_point m_heldUntil; // since the last one returned
    Clock::time_point m_longest; // how long anything is held back now
    Clock::time_point m_toldAt; // when the command callback has last returned

    std::mutex m_listenerMutex; // held while it is called
    Listener m_listener;
};

#endif
