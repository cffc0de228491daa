#ifndef SESSION_H
#define SESSION_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include "Callbacks.h"
#include "Card.h"
#include "CardHost.h"
#include "CardSlot.h"
#include "Dialogue.h"
#include "SessionThread.h"
#include "Transcript.h"

/// The toolkit session between one card and one terminal: pairs the terminal's answers with the
/// card's commands.
///
/// It has a thread of its own, on which the card lives and both callbacks are called.  Every
/// function may be called from any thread, from inside a callback too, and returns without waiting
/// for the card; those that return a number return a ServiceStatus, or the status of a fault that
/// the card asked for.
class Session {
public:
    Session();
    ~Session();
    /// Ends the session's thread; false where the card keeps it for longer than the patience, and
    /// then the session must be left as it is.
    bool stop(std::chrono::milliseconds patience);
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    // The terminal's side.

    int32_t registerCallback(ServiceFunction function, Callbacks::Kind kind,
                             Callbacks::Callback callback);
    int32_t unregisterCallback(ServiceFunction function, Callbacks::Kind kind,
                               Callbacks::Callback callback);

    int32_t mainMenu(CommandMenu &menu);
    int32_t selectMenuItem(int16_t itemId);
    /// The details of the command in progress, which must be of the given type.
    int32_t details(ServiceFunction function, int16_t commandId, int32_t type, CommandBody &body);
    int32_t selectSubMenuItem(int16_t commandId, int32_t action, int16_t itemId);
    /// Answers the command in progress, which must be of the given type.
    int32_t answer(ServiceFunction function, int16_t commandId, int32_t type,
                   TerminalResponse response);
    /// The status of a call with a null pointer or a number without a meaning.
    int32_t refuseArgument(ServiceFunction function,
                           std::optional<int16_t> commandId = std::nullopt);
    /// The status of a menu's release: what the card's faults say of it.
    int32_t releaseStatus(ServiceFunction function);

    // The network's side.

    /// Puts the card into the modem, in place of the one that is there.  Null takes it out.
    void insertCard(std::unique_ptr<Card> card);
    void removeModem();
    void insertModem();
    void endSession();
    void timeOutSession();
    CardHost::ModemState state();
    bool hasMenu();
    /// Runs the function with the card that is in the modem now, on the session's thread; never
    /// where there is none or, if that matters, the modem was removed by then.
    void withCard(std::function<void(Card &)> function, bool alsoWhileRemoved = false);
    /// Whether a card of that kind is in the modem.
    template <class Kind> bool hasCard()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return dynamic_cast<const Kind *>(m_slot.card().get());
    }

    Transcript &transcript() { return m_transcript; }
    Callbacks &callbacks() { return m_callbacks; }

private:
    using Word = Dialogue::Word;

    template <class Function>
    int32_t call(ServiceFunction name, std::optional<int16_t> commandId, Function function);

    // With the lock held.
    int32_t commandStatus(ServiceFunction function, int16_t commandId, int32_t type) const;
    void answerCurrent(TerminalResponse response, std::optional<ServiceFunction> function);
    void postResponse(int16_t commandId, TerminalResponse response);
    void postPowerOn();
    void postDevice(int code);
    void forgetSession();
    void loseModem();
    void regainModem();
    std::optional<Word> handle(CardEvent &event);
    std::optional<Word> passDeadline();

    // On the session's thread, without the lock.
    std::optional<SessionThread::Pause> work();
    template <class Function> void tellWhat(Function function);
    void tell(const Word &word);

    // These have locks of their own, under which they take no other.
    Transcript m_transcript;
    Callbacks m_callbacks;

    // Guards the next three.  While it is held nobody is called, and nothing is waited for.
    std::mutex m_mutex;
    CardSlot m_slot{m_transcript};
    Dialogue m_dialogue{m_transcript};
    unsigned m_epoch = 0; // changes where what the card is doing no longer counts

    SessionThread m_thread; // the last one: it uses the others
};

#endif
