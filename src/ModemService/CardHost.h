#ifndef CARDHOST_H
#define CARDHOST_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/ModemService.h"

/// How the host application puts a card into the modem, plays the network side and listens to what
/// passes between card and terminal.  Every function may be called from any thread and returns
/// without waiting for the card.
namespace CardHost {

/// One line of the transcript.
struct TranscriptEntry {
    std::string text; ///< for people: UTF-8, one line, no line feed at its end
    std::string json; ///< the same for programs: one JSON object, one line, no line feed at its end
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

/// One smart-card reader.
struct Reader {
    enum class State {
        Empty, ///< no card is in it
        Card, ///< a card that answers
        Mute, ///< a card that does not answer, or the wrong way round
        InUse ///< a card that another program keeps for itself
    };
    std::string name; ///< as the smart-card daemon calls it
    State state = State::Empty;
};

/// What a card in a reader, or the way to it, has to say to people.
struct Notice {
    std::string id; ///< of the text in the host's catalogues, "IDS_CM_NOTICE_CARD_SILENT"
    /// What stands for %1, %2 ... there: names of readers, status words...
    std::vector<std::string> arguments;
    std::string text; ///< the same in English with the arguments in it, one line of UTF-8
    bool problem = false; ///< something is in the way
};

struct ReaderList {
    std::vector<Reader> readers; ///< in the daemon's order
    std::optional<Notice> problem; ///< why there can be no readers
};

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

using NoticeListener = std::function<void(const Notice &)>;
/// In place of the listener before; null for none.  It is called on the session's thread, and must
/// not call back into this header.
MOVA_API void setNoticeListener(NoticeListener listener);

/// Four to eight digits that are wiped from memory when it goes.
class Pin {
public:
    Pin() = default;
    /// Nothing but four to eight decimal digits makes a PIN (3GPP TS 31.101 clause 9.5.1); any
    /// other text makes an invalid one.
    MOVA_API explicit Pin(const char *digits, size_t count);
    MOVA_API Pin(const Pin &other);
    MOVA_API Pin &operator=(const Pin &other);
    MOVA_API ~Pin();

    bool isValid() const { return m_count != 0; }
    size_t size() const { return m_count; }
    const char *digits() const { return m_digits.data(); } ///< not terminated

private:
    std::array<char, 8> m_digits{};
    size_t m_count = 0;
};

/// The card wants its PIN.
struct PinRequest {
    int id = 0; ///< for the answer
    std::string card; ///< for people
    int triesLeft = 0; ///< after the last one the card is blocked; 0: the card does not tell
    bool wrong = false; ///< the PIN before this request was wrong
};
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
