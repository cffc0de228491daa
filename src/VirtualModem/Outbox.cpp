#include "Outbox.h"

#include <algorithm>

// So that the other side reads the pieces one by one.
static constexpr std::chrono::microseconds BetweenPieces(500);

void Outbox::send(const cat::Bytes &bytes)
{
    m_last = std::max(m_last, Clock::now());
    for (size_t at = 0; at < bytes.size();) {
        const size_t count = std::min(m_faults.pieceLength(), bytes.size() - at);
        m_pieces.push_back({m_last, cat::ByteView(bytes).part(at, count).copy()});
        at += count;
        if (at < bytes.size())
            m_last += BetweenPieces;
    }
}

void Outbox::pause(std::chrono::milliseconds time)
{
    m_last = std::max(m_last, Clock::now()) + time;
}

void Outbox::clear()
{
    m_pieces.clear();
    m_last = {};
    m_isBlocked = m_hangsUp = false;
}

std::optional<Outbox::Clock::time_point> Outbox::due() const
{
    if (m_pieces.empty() || m_isBlocked)
        return std::nullopt;
    return m_pieces.front().due;
}

void Outbox::flush(Pty &pty)
{
    m_isBlocked = false;
    while (!m_pieces.empty() && m_pieces.front().due <= Clock::now()) {
        cat::Bytes &bytes = m_pieces.front().bytes;
        const size_t written = pty.write(bytes);
        if (written < bytes.size()) {
            bytes.erase(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(written));
            m_isBlocked = true;
            return;
        }
        m_pieces.pop_front();
    }
}
