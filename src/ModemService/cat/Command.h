#ifndef CAT_COMMAND_H
#define CAT_COMMAND_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "Bytes.h"

// Proactive commands as a card codes them (ETSI TS 102 223 clause 6.6), as values.  All texts are
// well-formed UTF-8; what a coding does not know becomes U+FFFD.

namespace cat {

/// Clause 8.6.
struct CommandDetails {
    uint8_t number = 0;
    uint8_t type = 0;
    uint8_t qualifier = 0;
    /// The whole data object as the card sent it, tag and length included: a terminal response
    /// repeats it byte for byte (clause 6.8).  Where the card sent none that can be read, one with
    /// three zeros.
    Bytes object;
};

/// Clause 8.7.
struct DeviceIdentities {
    uint8_t source = 0;
    uint8_t destination = 0;
};

/// Clause 8.8.
struct Duration {
    enum class Unit : uint8_t { Minutes = 0, Seconds = 1, TenthsOfSeconds = 2 };
    Unit unit = Unit::Seconds;
    uint8_t interval = 0;

    std::chrono::milliseconds time() const;
};

/// Clause 8.9.
struct Item {
    uint8_t id = 0;
    std::string text;
};

struct Menu {
    std::string title;
    std::vector<Item> items; ///< none: the card takes its menu away (clause 6.6.7)
};

struct DisplayText {
    std::string text;
    bool immediateResponse = false; ///< clause 8.43: answered before the user has seen it
    std::optional<Duration> duration;
};

struct GetInkey {
    std::string text;
    std::optional<Duration> duration; ///< how long the user has for an answer
};

struct GetInput {
    std::string text;
    uint8_t minLength = 0; ///< characters
    uint8_t maxLength = 0xff; ///< characters; 0xff: no limit (clause 8.11)
    std::string defaultText;
};

struct PlayTone {
    std::string alpha;
    std::optional<uint8_t> tone; ///< clause 8.16
    std::optional<Duration> duration;
};

struct SetUpMenu {
    Menu menu;
};

struct SelectItem {
    Menu menu;
    uint8_t defaultItem = 0; ///< identifier of the item to start with, 0 for none
};

struct SetUpIdleModeText {
    std::string text;
};

struct SetUpCall {
    std::string confirmation; ///< first alpha identifier
    std::string setUp; ///< second alpha identifier
    std::string address; ///< dialling number: digits, '*', '#', 'p' for a pause; '+' first where
                         ///< international
};

struct SendSs {
    std::string alpha;
    std::string code; ///< supplementary service control string, e.g. "**21*0123#"
};

struct SendUssd {
    std::string alpha;
    std::string code;
};

struct SendShortMessage {
    std::string alpha;
    std::string address; ///< destination of an SMS-SUBMIT (3GPP TS 23.040), else empty
    std::string message; ///< its text where it has one
};

struct LaunchBrowser {
    std::string alpha;
    std::string url;
};

struct Refresh {
    Bytes files; ///< value of the file list, clause 8.18
};

struct MoreTime { };
struct PollingOff { };
struct PollInterval {
    Duration duration;
};

/// Clause 6.6.21; the qualifier says what is to be done with the timer.
struct TimerManagement {
    uint8_t timer = 0; ///< 1 to 8
    std::optional<std::chrono::seconds> value; ///< clause 8.38
};

struct ProvideLocalInformation { };
struct SetUpEventList {
    Bytes events; ///< clause 8.25
};
struct LanguageNotification {
    std::string language; ///< ISO 639 code of two letters, empty where the card names none
};

/// A command of the standard that has nothing here, or of no standard.
struct OtherCommand { };

using Body =
    std::variant<OtherCommand, DisplayText, GetInkey, GetInput, PlayTone, SetUpMenu, SelectItem,
                 SetUpIdleModeText, SetUpCall, SendSs, SendUssd, SendShortMessage, LaunchBrowser,
                 Refresh, MoreTime, PollInterval, PollingOff, TimerManagement,
                 ProvideLocalInformation, SetUpEventList, LanguageNotification>;

/// Why a command cannot be carried out as it came, with the general result that says so (clause
/// 8.12).
enum class Problem : uint8_t {
    None = 0x00,
    BeyondCapabilities = 0x30, ///< a command of the standard that this terminal does not do
    TypeNotUnderstood = 0x31, ///< a type that the standard does not have
    DataNotUnderstood = 0x32, ///< a data object that cannot be read, or not understood and required
    ValuesMissing = 0x36 ///< a mandatory data object is not there
};

struct Command {
    CommandDetails details;
    std::optional<DeviceIdentities> devices;
    const char *name = "UNKNOWN COMMAND"; ///< in the standard, e.g. "DISPLAY TEXT"
    /// Something in it was passed over: not of this command, or malformed and no matter
    /// (clause 6.10).
    bool isPartial = false;
    bool hasIcon = false; ///< it comes with an icon, or its items do (clauses 8.31 and 8.32)
    Problem problem = Problem::None;
    std::string
        reason; ///< for people: which data object is wrong, where, and how; empty without a problem
    Body body; ///< what could be read, where there is a problem
};

/// Reads what FETCH returned, without its status words.  Every input gives a result, in time
/// proportional to its length.
Command decode(ByteView fetched);

} // namespace cat

#endif
