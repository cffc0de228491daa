#ifndef TERMINALDUTIES_H
#define TERMINALDUTIES_H

#include <array>
#include <chrono>
#include <optional>
#include <string>

#include "ToolkitPort.h"
#include "cat/Command.h"
#include "cat/Response.h"

/// What a terminal does with a proactive command without asking anybody: timers, polling, local
/// information, events (ETSI TS 102 223 clause 6.4).  Of one card, from its start on.
class TerminalDuties {
public:
    using Time = PortEvents::Time;

    /// `language`: of the user interface, ISO 639, two letters.
    TerminalDuties(PortTraits traits, std::string language);

    struct Done {
        cat::Response response;
        std::string details{}; ///< of the command, for people
        bool setsPollInterval = false;
        std::optional<std::chrono::milliseconds> pollInterval{}; ///< nothing: no polling
    };
    /// Nothing: the command is not the terminal's, but somebody's to whom it is shown.
    std::optional<Done> carryOut(const cat::Command &command, Time now);

    /// The envelope of a timer that ran out, one a call.
    std::optional<PortEnvelope> expiredTimer(Time now);
    /// When a timer runs out next.
    Time nextExpiry() const;

    /// The envelope where the card asked to be told.
    std::optional<PortEnvelope> userActed();
    std::optional<PortEnvelope> setLanguage(const std::string &language);

private:
    struct Timer {
        std::optional<Time> started; // none: it does not run
        std::chrono::seconds value{0};
    };
    struct Visitor;

    Done manageTimer(const cat::Command &command, const cat::TimerManagement &management, Time now);
    Done tellLocalInformation(const cat::Command &command) const;
    Done setEventList(const cat::Command &command, const cat::SetUpEventList &list);
    bool reportsEvent(uint8_t event) const;

    PortTraits m_traits;
    std::string m_language;
    std::array<Timer, 8> m_timers;
    cat::Bytes m_eventList;
};

#endif
