#include "AtChannel.h"

#include <cctype>
#include <cstring>
#include <utility>

#include <poll.h>

using std::chrono::milliseconds;

namespace {

constexpr size_t MostLines = 64; // of one answer
constexpr const char *Blank = "***";

// An echo repeats what was sent, and may come late, or in part.
std::string withoutEcho(const std::string &line, bool holdsSecret)
{
    const size_t sign = line.find('=');
    if (sign != std::string::npos)
        return line.substr(0, sign + 1) + Blank;
    const char first = line.front();
    const bool mayBeSecret = std::isalnum(static_cast<unsigned char>(first)) || first == '"';
    return holdsSecret && mayBeSecret && !finalResult(line) ? Blank : line;
}

} // namespace

SerialPort::State AtChannel::open(const std::string &device)
{
    return m_serial.open(device);
}

void AtChannel::close()
{
    m_serial.close();
    m_lines.clear();
    if (m_exchange)
        explicit_bzero(m_exchange->command.data(), m_exchange->command.size());
    m_exchange.reset();
}

bool AtChannel::say(std::string command, size_t secret, milliseconds patience, Done done, Time now)
{
    m_exchange = Exchange{std::move(command), secret, std::move(done), now + patience, {}};
    std::string &line = m_exchange->command;
    const bool written = m_serial.write(line += '\r');
    line.pop_back();
    m_reports.spoken(false, line.substr(0, line.size() - secret) + (secret ? Blank : ""));
    return written;
}

bool AtChannel::write(const std::string &command)
{
    const bool written = m_serial.write(command + '\r');
    m_reports.spoken(false, command);
    return written;
}

bool AtChannel::work(Time now)
{
    m_lookedAt = now;
    std::string bytes;
    const bool there = m_serial.read(bytes);
    m_lines.add(bytes);
    while (const auto line = nextLine()) {
        takeLine(*line, now);
        if (!isOpen())
            return true; // whoever heard the line has closed it
    }
    if (m_exchange && now >= m_exchange->deadline)
        finish(now);
    return there || !isOpen();
}

std::optional<std::string> AtChannel::nextLine()
{
    auto line = m_lines.next();
    if (line)
        m_reports.spoken(true, withoutEcho(*line, m_exchange && m_exchange->secret));
    return line;
}

void AtChannel::takeLine(const std::string &line, Time now)
{
    if (m_unasked(line, now) || !m_exchange || line == m_exchange->command)
        return; // somebody else's, or the echo
    m_exchange->answer.final = finalResult(line);
    if (m_exchange->answer.final)
        finish(now);
    else if (m_exchange->answer.lines.size() < MostLines)
        m_exchange->answer.lines.push_back(line);
}

void AtChannel::finish(Time now)
{
    Exchange exchange = std::move(*m_exchange);
    m_exchange.reset();
    explicit_bzero(exchange.command.data(), exchange.command.size()); // may be a PIN, or an answer
    exchange.done(exchange.answer, now);
}

bool AtChannel::isAnswered(milliseconds moment)
{
    using Clock = std::chrono::steady_clock;
    const Time end = Clock::now() + moment;
    for (Time now = Clock::now(); now < end; now = Clock::now()) {
        while (const auto line = nextLine()) {
            if (finalResult(*line))
                return true;
        }
        const auto left = std::chrono::duration_cast<milliseconds>(end - now);
        pollfd readable{m_serial.descriptor(), POLLIN, 0};
        std::string bytes;
        if (poll(&readable, 1, static_cast<int>(left.count()) + 1) == 1 && !m_serial.read(bytes))
            return false;
        m_lines.add(bytes);
    }
    return false;
}
