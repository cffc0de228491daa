#ifndef BUSYWAIT_H
#define BUSYWAIT_H

#include <algorithm>
#include <chrono>

/// When to repeat what a busy card did not take: later and later, but not for ever.
class BusyWait {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// Counts one more refusal; false where it has gone on for too long.
    bool isWorthIt(Time now)
    {
        if (m_delay.count() == 0) {
            m_delay = FirstDelay;
            m_until = now + MostTime;
        }
        if (now >= m_until) {
            end();
            return false;
        }
        m_at = now + m_delay;
        m_delay = std::min(2 * m_delay, LastDelay);
        return true;
    }
    void end()
    {
        m_delay = std::chrono::milliseconds(0);
        m_at = Time();
    }

    bool isOn() const { return m_delay.count() != 0; }
    /// When to try again.
    Time at() const { return m_at; }

private:
    static constexpr std::chrono::milliseconds FirstDelay{100}, LastDelay{3200}, MostTime{30000};

    std::chrono::milliseconds m_delay{0};
    Time m_at;
    Time m_until;
};

#endif
