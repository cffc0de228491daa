#ifndef SESSIONTHREAD_H
#define SESSIONTHREAD_H

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "Alarm.h"

/// A thread that carries out what others ask for, one request at a time and in order, and does its
/// owner's work between them.  Where there is nothing to do, it waits.
class SessionThread {
public:
    using Request = std::function<void()>;
    /// Until then, and until the descriptor (-1: none) becomes readable.
    struct Pause {
        Alarm::Time until;
        int descriptor = -1;
    };
    /// One piece of work; a pause where there was none.
    using Work = std::function<std::optional<Pause>()>;

    explicit SessionThread(Work work);
    /// Waits for the thread's end.
    ~SessionThread();
    SessionThread(const SessionThread &) = delete;
    SessionThread &operator=(const SessionThread &) = delete;

    void post(Request request);
    /// Whether there is one that was not begun.
    bool hasRequests();
    /// Destroys the object on the thread, before the next request.
    void discard(std::shared_ptr<void> object);
    /// Ends the thread behind the requests before; false where they take longer than the patience.
    bool stop(std::chrono::milliseconds patience);

private:
    using Lock = std::unique_lock<std::mutex>;

    void run();
    bool carryOut(Lock &lock);

    const Work m_work;
    Alarm m_alarm;
    std::mutex m_mutex; // guards what follows, up to the thread
    std::condition_variable m_hasEnded;
    std::deque<Request> m_requests;
    std::vector<std::shared_ptr<void>> m_discarded;
    std::thread::id m_self;
    bool m_stop = false;
    bool m_ended = false;
    std::thread m_thread; // the last one: it uses the others
};

#endif
