#ifndef READERTOOLS_H
#define READERTOOLS_H

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <sys/types.h>

// What a program needs to play with the card of src/VirtualCard, in the readers of
// tests/reader/with-pcscd, or in the modem of src/VirtualModem.

/// A virtual card or modem, from its insertion to the end of this object.
class CardProcess {
public:
    using Clock = std::chrono::steady_clock;

    /// `arguments` are those of VirtualCard, without the port; `reader` is 0 or 1.
    explicit CardProcess(std::vector<std::string> arguments, int reader = 0);
    /// Any program that says what happens to it, a line each, behind its name.
    CardProcess(const std::string &program, std::vector<std::string> arguments);
    ~CardProcess();

    /// Waits until the card says this, at most so long, and tells when it said so; nothing when it
    /// did not.  What it said before is taken, too.
    std::optional<Clock::time_point> waitFor(const std::string &line,
                                             std::chrono::milliseconds most);
    /// Pulls the card out for a moment, or unplugs the modem.
    void takeOut() { signal(SIGUSR1); }
    /// What else it listens to.
    void signal(int number);
    /// Ends the card; the result is its exit status.
    int end();

private:
    void listen(int output);

    const std::string m_name; // behind which it speaks
    pid_t m_process = 0;
    std::mutex m_mutex;
    std::condition_variable m_change;
    std::deque<std::pair<std::string, Clock::time_point>> m_lines; // not yet taken
    std::thread m_listener;
};

/// What the modem service told: a command's type, or a device event.
struct ServiceCall {
    int32_t type = -1;
    int16_t id = 0;
    std::chrono::steady_clock::time_point when;
};

/// The callbacks of the modem service; there is one of this at a time.
class ServiceCalls {
public:
    ServiceCalls();
    ~ServiceCalls();

    /// Nothing when none came in the time.
    std::optional<ServiceCall> next(std::chrono::milliseconds most);
    /// Drops calls until one of this type.
    std::optional<ServiceCall> next(int32_t type, std::chrono::milliseconds most);
    void add(const ServiceCall &call);

private:
    std::mutex m_mutex;
    std::condition_variable m_change;
    std::deque<ServiceCall> m_calls;
};

/// Does what the command asks of a user who agrees to everything.
void answer(const ServiceCall &command);

#endif
