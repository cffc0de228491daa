#ifndef ATCHANNEL_H
#define ATCHANNEL_H

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "AtLines.h"
#include "SerialPort.h"
#include "toolkit/PortReports.h"

/// The conversation on an AT port: one command at a time, the lines of its answer, and what the
/// modem says unasked.
class AtChannel {
public:
    using Time = std::chrono::steady_clock::time_point;

    struct Answer {
        std::optional<AtFinal> final; ///< nothing: there was none in time
        std::vector<std::string> lines;

        bool isOk() const { return final && final->kind == AtFinal::Kind::Ok; }
        int error() const { return final ? final->code.value_or(0) : 0; }
    };
    using Done = std::function<void(const Answer &, Time)>;
    /// Hears every line first; true where it belongs to no answer.
    using Unasked = std::function<bool(const std::string &line, Time)>;

    /// Every line is told, too.
    AtChannel(Unasked unasked, PortReports &reports)
        : m_unasked(std::move(unasked))
        , m_reports(reports)
    {
    }

    SerialPort::State open(const std::string &device);
    /// Nobody hears any more of what was under way.
    void close();
    bool isOpen() const { return m_serial.isOpen(); }
    int descriptor() const { return m_serial.descriptor(); }

    /// Once nothing is under way.  So many characters at the end are `secret`.  False: the device
    /// is gone.
    bool say(std::string command, size_t secret, std::chrono::milliseconds patience, Done done,
             Time now);
    bool isWaiting() const { return m_exchange.has_value(); }
    bool isWaitingFor(std::string_view command) const
    {
        return m_exchange && m_exchange->command == command;
    }
    /// When work() is to be called at the latest, while it is waiting.
    Time deadline() const { return m_exchange->deadline; }
    /// Takes what has come.  False: the device is gone.
    bool work(Time now);
    /// work() took what had come, less than a millisecond ago.
    bool hasJustLooked(Time now) const { return now - m_lookedAt < std::chrono::milliseconds(1); }

    /// The last words, which nobody waits long for.
    bool write(const std::string &command);
    bool isAnswered(std::chrono::milliseconds moment);

private:
    struct Exchange {
        std::string command;
        size_t secret;
        Done done;
        Time deadline;
        Answer answer;
    };

    std::optional<std::string> nextLine();
    void takeLine(const std::string &line, Time now);
    void finish(Time now);

    const Unasked m_unasked;
    PortReports &m_reports;
    SerialPort m_serial;
    AtLineReader m_lines;
    Time m_lookedAt; // by work()
    std::optional<Exchange> m_exchange;
};

#endif
