#ifndef CAT_RESPONSE_H
#define CAT_RESPONSE_H

#include <chrono>
#include <cstdint>
#include <ctime>
#include <optional>
#include <string>

#include "Bytes.h"
#include "Command.h"
#include "TextString.h"

// What a terminal tells the card: terminal responses (ETSI TS 102 223 clause 6.8), envelopes
// (clause 7) and the terminal profile (clause 5.2).

namespace cat {

/// General results, clause 8.12.
enum class Result : uint8_t {
    Performed = 0x00,
    PerformedPartly = 0x02, ///< with missing information: something was passed over (clause 6.10)
    PerformedWithoutIcon = 0x04, ///< its icon could not be displayed (clause 6.5.4)
    TerminatedByUser = 0x10,
    BackwardMove = 0x11,
    NoResponseFromUser = 0x12,
    HelpRequired = 0x13,
    TerminalUnable = 0x20, ///< needs additional information, clause 8.12.2
    TimerContradiction = 0x24,
    BeyondCapabilities = 0x30,
    TypeNotUnderstood = 0x31,
    DataNotUnderstood = 0x32,
    ValuesMissing = 0x36
};

/// Additional information on TerminalUnable.
constexpr uint8_t NoSpecificCause = 0x00;
constexpr uint8_t NoService = 0x04;

struct Response {
    CommandDetails details; ///< of the command
    uint8_t result = 0; ///< a Result, or any other general result
    Bytes additional{}; ///< behind the general result
    std::optional<Bytes> text = std::nullopt; ///< value of a text string, see encodeTextString()
    std::optional<uint8_t> item = std::nullopt;
    std::optional<Duration> duration = std::nullopt;
    std::optional<uint8_t> timer = std::nullopt; ///< 1 to 8
    std::optional<std::chrono::seconds> timerValue = std::nullopt; ///< up to 99:59:59
    std::optional<Bytes> dateTime = std::nullopt; ///< value, see encodeDateTime()
    std::optional<std::string> language = std::nullopt; ///< two letters
};

/// What the data field of a command to the card takes.
constexpr size_t LongestResponse = 255;

/// The data field of TERMINAL RESPONSE; nothing where the response is longer than the longest.
std::optional<Bytes> encode(const Response &response);

/// The longest value of a text string in a response to the command.
size_t textRoom(const Command &command);

/// Date, time and zone, clause 8.39: seven bytes.  `local.tm_gmtoff` is the zone.
Bytes encodeDateTime(const std::tm &local);

// Envelopes: the data field, outer tag included.

/// Clause 7.2.
Bytes encodeMenuSelection(uint8_t item);
/// Clause 7.4.
Bytes encodeTimerExpiration(uint8_t timer, std::chrono::seconds value);
/// Clause 7.5.5 (user activity) and 7.5.8 (language selection).
Bytes encodeUserActivity();
Bytes encodeLanguageSelection(const std::string &language);

/// Events of SET UP EVENT LIST (clause 8.25) that this terminal reports.
constexpr uint8_t UserActivity = 0x04;
constexpr uint8_t LanguageSelection = 0x07;

/// The data field of TERMINAL PROFILE: what this terminal does, no more and no less; beside a modem
/// without what that does by itself.
Bytes terminalProfile(bool besideModem = false);
/// The types of the proactive commands that this terminal carries out beside a modem.
Bytes typesBesideModem();

} // namespace cat

#endif
