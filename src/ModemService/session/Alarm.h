#ifndef ALARM_H
#define ALARM_H

#include <chrono>

/// What the session's thread waits for: somebody who rings, a time, or a descriptor that becomes
/// readable.
class Alarm {
public:
    using Time = std::chrono::steady_clock::time_point;

    Alarm();
    ~Alarm();
    Alarm(const Alarm &) = delete;
    Alarm &operator=(const Alarm &) = delete;

    /// From any thread; whoever waits, or will wait next, goes on at once.
    void ring();
    /// One thread only.  A descriptor of -1 is none.
    void wait(Time until, int descriptor = -1);

private:
    const int m_bell;
};

#endif
