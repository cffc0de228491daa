#ifndef MODEMCARD_H
#define MODEMCARD_H

#include <array>
#include <chrono>
#include <optional>

#include "PlayedCard.h"

/// What a modem does with its card by itself: start, PIN, FETCH, STATUS, timers, and the commands
/// that no terminal has to see.
class ModemCard {
public:
    using Clock = std::chrono::steady_clock;
    enum class State { Off, NoSim, PinWanted, PinBlocked, Ready };

    class Listener {
    public:
        virtual ~Listener() = default;
        /// A command that is not the modem's own.  The result (ETSI TS 102 223 clause 8.12) when
        /// the modem answers at once; nothing: the terminal answers, by terminalResponse().
        virtual std::optional<cat::Bytes> proactiveCommand(const cat::Bytes &command,
                                                           uint8_t type) = 0;
        /// The menu that was set up before the terminal attached.  Whether the terminal is to
        /// answer it nevertheless: the modem calls handOutPending() then.
        virtual bool menuAgain(const cat::Bytes &command) = 0;
        virtual void sessionEnded() = 0;
        /// TERMINAL PROFILE, at the start of the toolkit.
        virtual cat::Bytes profile() = 0;
    };

    /// `isLate`: the toolkit starts with the card, whether or not a terminal is there to listen.
    ModemCard(CardFile file, Listener &listener, bool isLate);

    void switchOn();
    void switchOff();
    /// There is none until switchOn().
    void takeOut();
    State state() const { return m_state; }
    int pinTries();
    bool verify(const std::string &digits);

    /// A terminal takes the commands from now on, or none does; a command that is not answered
    /// waits for the next one.
    void attach();
    void detach() { m_isAttached = false; }
    bool isAttached() const { return m_isAttached; }
    void handOutPending();

    /// Of the terminal.  The status words, 91xx (then the command was handed out already) or other.
    uint16_t terminalResponse(cat::ByteView response);
    uint16_t envelope(cat::ByteView envelope);
    /// A command is the terminal's to answer.
    bool awaitsResponse() const { return m_pending.has_value(); }

    /// When there is something to do: a timer, STATUS.
    std::optional<Clock::time_point> due() const;
    void work();

    PlayedCard &played() { return m_card; }

private:
    struct Details; // of a proactive command

    cat::Bytes transmit(uint8_t instruction, uint8_t p2, cat::ByteView data,
                        std::optional<uint8_t> wanted = std::nullopt);
    uint16_t send(uint8_t instruction, cat::ByteView data);
    State stateAtStart();
    bool isSim();
    void startToolkit();
    void follow(uint16_t status);
    void endSession();
    std::optional<cat::Bytes> handle(const cat::Bytes &command);
    std::optional<cat::Bytes> handOut(const Details &details, const cat::Bytes &command);
    cat::Bytes pollInterval(const Details &details);
    cat::Bytes timerManagement(const Details &details);
    void expire(size_t timer);

    PlayedCard m_card;
    Listener &m_listener;
    const bool m_isLate;
    const bool m_is2g;

    State m_state = State::Off;
    std::string m_digits; // a modem enters the PIN again after a reset that the card asked for
    bool m_isAttached = false;
    bool m_isStarted = false; // the toolkit
    bool m_isSession = false; // of which the terminal has seen something
    bool m_restarts = false; // asked for by REFRESH
    std::optional<cat::Bytes> m_pending; // for the terminal
    std::optional<cat::Bytes> m_menu; // that was answered

    std::optional<std::chrono::seconds> m_pollInterval;
    Clock::time_point m_pollAt;
    struct Timer {
        Clock::time_point start, end;
        bool isRunning = false;
    };
    std::array<Timer, 8> m_timers;
};

#endif
