#ifndef OUTBOX_H
#define OUTBOX_H

#include <chrono>
#include <deque>
#include <optional>

#include "ModemFaults.h"
#include "Pty.h"

/// What the modem has to send: in order, and as late and as cut up as the faults want it.
class Outbox {
public:
    using Clock = std::chrono::steady_clock;

    explicit Outbox(ModemFaults &faults)
        : m_faults(faults)
    {
    }

    void send(const cat::Bytes &bytes);
    /// What is sent from now on waits for so long.
    void pause(std::chrono::milliseconds time);
    /// The modem is to be unplugged for a moment.
    void hangUp() { m_hangsUp = true; }
    bool hangsUp() const { return m_hangsUp; }
    /// To the next who opens the port nothing of this is sent.
    void clear();

    /// When there is something to send.
    std::optional<Clock::time_point> due() const;
    /// It is due, and there is no room.
    bool isBlocked() const { return m_isBlocked; }
    void flush(Pty &pty);

private:
    struct Piece {
        Clock::time_point due;
        cat::Bytes bytes;
    };

    ModemFaults &m_faults;
    std::deque<Piece> m_pieces;
    Clock::time_point m_last; // when the last of them is due
    bool m_isBlocked = false;
    bool m_hangsUp = false;
};

#endif
