#ifndef MODEMMONITOR_H
#define MODEMMONITOR_H

#include <functional>
#include <string>
#include <thread>
#include <vector>

/// One way to a modem's toolkit; a modem may have several.
struct Modem {
    enum class Kind { At, Mbim };
    enum class State {
        Free,
        InUse, ///< another program has it open
        Denied ///< this user may not use it
    };

    Kind kind = Kind::At;
    std::string device; ///< "/dev/ttyUSB2"
    std::string name; ///< of its maker and model, as the system knows them; may be empty
    State state = State::Free;
    std::string user; ///< the program that has it open, where it is known
};

/// What looks like a modem (a serial port of one, an MBIM control device), in the order of their
/// names, each with its state.
std::vector<Modem> listModems();

/// Follows the modems as they come and go, on a thread of its own.
class ModemMonitor {
public:
    using Publish = std::function<void(const std::vector<Modem> &)>;

    /// Publishes them as they are, and again whenever one comes or goes.
    explicit ModemMonitor(Publish publish);
    /// No call of the function runs after this.
    ~ModemMonitor();
    ModemMonitor(const ModemMonitor &) = delete;
    ModemMonitor &operator=(const ModemMonitor &) = delete;

private:
    void run();

    const Publish m_publish;
    const int m_stop; // becomes readable when it is to end
    std::thread m_thread;
};

#endif
