#ifndef CARDHOST_H
#define CARDHOST_H

#include <functional>
#include <string>

#include "platform/ModemService.h"

/// How the host application puts a card into the modem, plays the network side and listens to what
/// passes between card and terminal.  Every function may be called from any thread and returns
/// without waiting for the card.
namespace CardHost {

/// One line of the transcript.
struct TranscriptEntry
{
    std::string text; ///< for people: UTF-8, one line, no line feed at its end
    std::string json; ///< the same for programs: one JSON object, one line, no line feed at its end
};

/// What the modem says of itself.
enum class ModemState {
    NoCard,  ///< no card was opened, or the last one could not be read
    Removed, ///< a card is there, the modem was pulled out
    Ready,   ///< a card is there and no proactive session is under way
    Busy     ///< a proactive session is under way
};

using TranscriptListener = std::function<void(const TranscriptEntry &)>;

/// Opens the scenario card in the file and ends whatever card was open.  On success the result is
/// empty; on failure it is one line that names the file, the place in it, what was expected and what
/// was found, and no card is open.
MOVA_API std::string openScenario(const std::string &file);

/// Takes the card out.  Nothing happens where there is none.
MOVA_API void closeCard();

MOVA_API ModemState state();

/// Pulls the modem out, or puts it back: the device callback is called with 6601 or 6602.
MOVA_API void removeModem();
MOVA_API void insertModem();

/// The card ends the session under way; its response time runs out.  Without a session under way the
/// event is reported all the same, as a card's late message would be.
MOVA_API void endSession();
MOVA_API void timeOutSession();

/// The card sends a proactive command unasked.  The command is a JSON object as in a scenario; the
/// result is empty, or one line that says what is wrong with it, and then nothing was sent.
MOVA_API std::string sendCommand(const std::string &json);

/// Calls the listener for every entry from now on, one entry at a time and in order, before the call
/// that caused the entry returns: on its thread, or on another that is telling entries just then.
/// The listener must not call back into this header.  The result is never 0.
MOVA_API int addTranscriptListener(TranscriptListener listener);
/// No call of the listener runs after this returns, except the one that it is called from.
MOVA_API void removeTranscriptListener(int id);

} // namespace CardHost

#endif
