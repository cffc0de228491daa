#include "TerminalAnswers.h"

#include <algorithm>

using std::chrono::milliseconds;

namespace {

// Bits of the qualifiers, ETSI TS 102 223 clause 8.6.
constexpr uint8_t UserClears = 0x80; // DISPLAY TEXT
constexpr uint8_t NotRevealed = 0x04; // GET INPUT

bool isHiddenInput(const cat::Command &command)
{
    return std::holds_alternative<cat::GetInput>(command.body) &&
        (command.details.qualifier & NotRevealed);
}

} // namespace

cat::Response responseWith(const cat::Command &command, cat::Result result)
{
    cat::Response response;
    response.details = command.details;
    if (result == cat::Result::Performed && command.isPartial)
        result = cat::Result::PerformedPartly;
    else if (result == cat::Result::Performed && command.hasIcon)
        result = cat::Result::PerformedWithoutIcon; // no window here shows icons
    response.result = static_cast<uint8_t>(result);
    return response;
}

cat::Response unable(const cat::Command &command, uint8_t cause)
{
    cat::Response response = responseWith(command, cat::Result::TerminalUnable);
    response.additional = {cause};
    return response;
}

cat::Response responseTo(const cat::Command &command, const TerminalResponse &answer)
{
    using Result = TerminalResponse::Result;
    switch (answer.result) {
    case Result::Performed: {
        cat::Response response = responseWith(command, cat::Result::Performed);
        if (answer.item)
            response.item = static_cast<uint8_t>(*answer.item);
        response.text = answer.coded;
        return response;
    }
    case Result::BackwardMove:
        return responseWith(command, cat::Result::BackwardMove);
    case Result::Cancelled:
    case Result::Terminated:
        return responseWith(command, cat::Result::TerminatedByUser);
    case Result::NotSupported:
        return responseWith(command, cat::Result::BeyondCapabilities);
    case Result::NoResponse:
        return responseWith(command, cat::Result::NoResponseFromUser);
    case Result::Unable:
        return unable(command, cat::NoService);
    case Result::Other:
        break;
    }
    return unable(command, cat::NoSpecificCause);
}

void addElapsedTime(cat::Response &response, const cat::Command &command,
                    std::chrono::steady_clock::duration time)
{
    const auto *inkey = std::get_if<cat::GetInkey>(&command.body);
    if (!inkey || !inkey->duration)
        return;
    const cat::Duration one{inkey->duration->unit, 1};
    const auto count = std::chrono::duration_cast<milliseconds>(time) / one.time();
    response.duration = one;
    response.duration->interval = static_cast<uint8_t>(std::clamp<int64_t>(count, 0, 0xff));
}

bool isPerformed(const cat::Response &response)
{
    return (response.result & 0xf0) == 0;
}

// General results, clause 8.12.
std::string resultInWords(const cat::Response &response)
{
    switch (static_cast<cat::Result>(response.result)) {
    case cat::Result::Performed:
        return "performed";
    case cat::Result::PerformedPartly:
        return "performed with missing information";
    case cat::Result::PerformedWithoutIcon:
        return "performed, but the icon could not be displayed";
    case cat::Result::NoResponseFromUser:
        return "no response from user";
    case cat::Result::TerminalUnable:
        return "terminal currently unable to process command";
    case cat::Result::TimerContradiction:
        return "action in contradiction with the current timer state";
    case cat::Result::BeyondCapabilities:
        return "command beyond terminal's capabilities";
    case cat::Result::TypeNotUnderstood:
        return "command type not understood by terminal";
    case cat::Result::DataNotUnderstood:
        return "command data not understood by terminal";
    case cat::Result::ValuesMissing:
        return "required values are missing";
    default:
        return "general result " + std::to_string(response.result);
    }
}

size_t secretLength(const cat::Response &response, const cat::Command &command)
{
    // The text is the last object, and its first byte the coding.
    const bool hidden = isHiddenInput(command) && response.text && !response.text->empty();
    return hidden ? response.text->size() - 1 : 0;
}

bool waitsForUser(const cat::Command &command)
{
    const auto *text = std::get_if<cat::DisplayText>(&command.body);
    return text && !text->duration && (command.details.qualifier & UserClears);
}

milliseconds timeToClear(const cat::Command &command)
{
    const auto *text = std::get_if<cat::DisplayText>(&command.body);
    if (!text || !text->duration || !(command.details.qualifier & UserClears))
        return milliseconds(0);
    return text->duration->time();
}

bool isUsersAct(const TerminalResponse &response, bool waited)
{
    using Result = TerminalResponse::Result;
    switch (response.result) {
    case Result::Performed:
        return response.item || response.text || waited;
    case Result::BackwardMove:
    case Result::Cancelled:
    case Result::Terminated:
        return true;
    default:
        return false;
    }
}

// The window clears it then by itself, and calls that performed.
bool isOverlooked(const cat::Command &command, const TerminalResponse &response,
                  std::chrono::steady_clock::duration time)
{
    constexpr milliseconds Tolerance{100}; // of the window's clock
    const milliseconds limit = timeToClear(command);
    return limit.count() && response.result == TerminalResponse::Result::Performed &&
        time + Tolerance >= limit;
}
