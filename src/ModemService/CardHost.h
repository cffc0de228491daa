#ifndef CARDHOST_H
#define CARDHOST_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "modem/ModemMonitor.h"
#include "platform/ModemService.h"
#include "reader/Readers.h"
#include "toolkit/PortReports.h"

/// How the host application puts a card into the modem, plays the network side and listens to what
/// passes between card and terminal.  Every function may be called from any thread and returns
/// without waiting for the card.
namespace CardHost {

/// One line of the transcript.
struct TranscriptEntry {
    std::string text; ///< for people: UTF-8, one line, no line feed at its end
    std::string json; ///< the same for programs: one JSON object, one line, no line feed at its end
    bool isDialogue = false; ///< what is said with a modem: for whoever looks for a fault
};

/// What the modem says of itself.
enum class ModemState {
    NoCard, ///< no card was opened, or the last one could not be read
    Removed, ///< a card is there, the modem was pulled out
    Ready, ///< a card is there and no proactive session is under way
    Busy ///< a proactive session is under way
};

using TranscriptListener = std::function<void(const TranscriptEntry &)>;

/// Opens the scenario card in the file and ends whatever card was open.  On success the result is
/// empty; on failure it is one line that names the file, the place in it, what was expected and
/// what was found, and no card is open.
MOVA_API std::string openScenario(const std::string &file);

// ---- Cards in smart-card readers ----

using ::Reader;
using ::ReaderList;

/// Asks the smart-card daemon, and waits for its answer.
MOVA_API ReaderList listReaders();

using ReaderListener = std::function<void(const ReaderList &)>;
/// Calls the listener with the readers as they are, and again whenever one comes or goes or a card
/// is put in or taken out, on a thread of its own.  The listener must not call back into this
/// header. The result is never 0.
MOVA_API int addReaderListener(ReaderListener listener);
/// No call of the listener runs after this returns.
MOVA_API void removeReaderListener(int id);

/// Puts the card of a reader into the modem and ends whatever card was open.  The reader is the
/// first whose name begins with the text; with an empty text, the first that has a card in it, or
/// the first. What is in the way (no daemon, no reader, no card...) is told as a notice, and tried
/// again until another card is opened.
MOVA_API void openReader(const std::string &nameStart);

// ---- Modems ----

using ::Modem;

/// What looks like a modem, each with its state.
MOVA_API std::vector<Modem> listModems();

using ModemListener = std::function<void(const std::vector<Modem> &)>;
/// Calls the listener with the modems as they are, and again whenever one comes or goes, on a
/// thread of its own.  The listener must not call back into this header.  The result is never 0.
MOVA_API int addModemListener(ModemListener listener);
/// No call of the listener runs after this returns.
MOVA_API void removeModemListener(int id);

/// Takes the toolkit of the SIM card in a modem and ends whatever card was open.  An empty device
/// is the first of its kind.  What is in the way is told as a notice, and tried again until another
/// card is opened; at the end the toolkit is given back to the modem.
MOVA_API void openModem(Modem::Kind kind, const std::string &device);

/// From now on the toolkit's commands have the names of this file on the AT ports that are opened:
/// a JSON object like {"+CUSATP": "^OWN"}.  The result is empty, or one line that says what is
/// wrong with the file, and nothing has changed.
MOVA_API std::string setAtDialect(const std::string &file);

// ---- Readers and modems ----

/// The card starts anew; a modem switches it off and on, and the network goes for a moment.
MOVA_API void restartCard();

using ::Notice;
using NoticeListener = std::function<void(const Notice &)>;
/// In place of the listener before; null for none.  It is called on the session's thread, and must
/// not call back into this header.
MOVA_API void setNoticeListener(NoticeListener listener);

using ::Pin;
using ::PinRequest;
/// Gets a request, or nothing when the one before is over: answered, or the card is gone.
using PinListener = std::function<void(const std::optional<PinRequest> &)>;
/// In place of the listener before; null for none.  It is called on the session's thread, and must
/// not call back into this header.  Without a listener a card goes without its PIN.
MOVA_API void setPinListener(PinListener listener);
/// Answers the request.  Without a valid PIN the card goes on without it.  An answer to a request
/// that is over does nothing.
MOVA_API void answerPin(int request, const Pin &pin);

/// Writes every command and response from now on to a capture file (GSMTAP), in place of the file
/// before.  A PIN, and what the user enters unseen, are blanked out.  The result is empty, or one
/// line that says why the file cannot be written; where that shows only later it is told as a
/// notice, and the capture is over.  An empty name ends the capture.
MOVA_API std::string captureApdus(const std::string &file);

/// The language of the user interface, ISO 639, two letters; a card may ask for it, or to be told.
MOVA_API void setLanguage(const std::string &language);

// ---- Any card ----

/// Takes the card out.  Nothing happens where there is none.
MOVA_API void closeCard();

MOVA_API ModemState state();

/// Pulls the modem out, or puts it back: the device callback is called with 6601 or 6602.
MOVA_API void removeModem();
MOVA_API void insertModem();

/// The card ends the session under way; its response time runs out.  Without a session under way
/// the event is reported all the same, as a card's late message would be.
MOVA_API void endSession();
MOVA_API void timeOutSession();

/// The scenario card sends a proactive command unasked.  The command is a JSON object as in a
/// scenario; the result is empty, or one line that says what is wrong with it or with the card in
/// the modem, and then nothing was sent.
MOVA_API std::string sendCommand(const std::string &json);

/// Whether the card in the modem has a menu for the user to choose from.
MOVA_API bool hasMenu();

/// Told the type of a proactive command: MOVA_STKTYPE_...
using CommandListener = std::function<void(int32_t type)>;
/// In place of the listener before; null for none.  It is called on the session's thread, right
/// before the terminal hears of the command, and must not call back into this header.  No call of
/// the listener before runs after this returns.
MOVA_API void setCommandListener(CommandListener listener);

/// Calls the listener for every entry from now on, one entry at a time and in order, before the
/// call that caused the entry returns: on its thread, or on another that is telling entries just
/// then. The listener must not call back into this header.  The result is never 0.
MOVA_API int addTranscriptListener(TranscriptListener listener);
/// No call of the listener runs after this returns, except the one that it is called from.
MOVA_API void removeTranscriptListener(int id);

} // namespace CardHost

#endif
