#ifndef SESSION_H
#define SESSION_H

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "Alarm.h"
#include "Card.h"
#include "CardHost.h"
#include "ProactiveCommand.h"
#include "Transcript.h"

/// The toolkit session between one card and one terminal.
///
/// It has a thread of its own, on which the card lives and both callbacks are called, one at a time
/// and in order.  Every function may be called from any thread, from inside a callback too, and
/// returns without waiting for the card; those that return a number return a ServiceStatus, or the
/// status of a fault that the card asked for.
///
/// What follows from an answer is never told before the call that gave the answer has returned, and
/// its caller had the time to note that; an answer given inside a callback is no such case.
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

    /// One callback of each kind: a second one fails, the same one again is a success.
    int32_t registerCommandCallback(MOVA_STKCallback callback);
    int32_t registerDeviceCallback(MOVA_DevMgrCallback callback);
    /// No call of the callback is running on another thread when these return, and none will start.
    int32_t unregisterCommandCallback(MOVA_STKCallback callback);
    int32_t unregisterDeviceCallback(MOVA_DevMgrCallback callback);

    int32_t mainMenu(CommandMenu &menu);
    int32_t selectMenuItem(int16_t itemId);
    /// The details of the command in progress, which must be of the given type.
    int32_t details(ServiceFunction function, int16_t commandId, int32_t type, CommandBody &body);
    int32_t selectSubMenuItem(int16_t commandId, int32_t action, int16_t itemId);
    /// Answers the command in progress, which must be of the given type.
    int32_t answer(ServiceFunction function, int16_t commandId, int32_t type,
                   const TerminalResponse &response);
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
    /// Heard on the session's thread, right before the command callback is called with a command.
    void setCommandListener(CardHost::CommandListener listener);
    /// Runs the function with the card that is in the modem now, on the session's thread; never
    /// where there is none or, if that matters, the modem was removed by then.
    void withCard(std::function<void(Card &)> function, bool alsoWhileRemoved = false);
    /// Whether a card of that kind is in the modem.
    template <class Kind> bool hasCard()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return dynamic_cast<const Kind *>(m_card.get());
    }

    Transcript &transcript() { return m_transcript; }

private:
    // Locks the session; at its end tells the transcript what happened under the lock.
    class Guard;
    // A call that answers the card, from its beginning to its return.
    class Answering;

    struct CommandInProgress {
        int16_t id = 0;
        ProactiveCommand command;
        bool open = true; // waits for its answer
        Card::Time deadline;
    };

    enum class Running { None, CommandCallback, DeviceCallback };
    using Request = std::function<void()>;

    template <class Callback>
    int32_t registerCallback(ServiceFunction function, Callback &slot, Callback callback);
    template <class Callback>
    int32_t unregisterCallback(ServiceFunction function, Callback &slot, Callback callback,
                               Running kind);

    // With the lock held:
    int32_t cardStatus(ServiceFunction function) const;
    int32_t commandStatus(ServiceFunction function, int16_t commandId, int32_t type) const;
    int32_t refuse(ServiceFunction function, std::optional<int16_t> commandId, int32_t status);
    int32_t mainMenuStatus(ServiceFunction function) const;
    void post(Request request);
    void postResponse(int16_t commandId, const TerminalResponse &response);
    void answerCurrent(const TerminalResponse &response, std::optional<ServiceFunction> function);
    std::optional<TerminalResponse> closeCurrent();
    void forgetSession();
    void loseModem();
    void postDevice(int code);
    void dropCurrent();
    bool isLate(int16_t keyId);
    int16_t newCommandId();
    Card::Time deadline() const;

    // On the session's thread:
    void run();
    bool runRequest(std::unique_lock<std::mutex> &lock);
    bool pollCard(std::unique_lock<std::mutex> &lock, Card::Time &wakeUp);
    bool passDeadline(std::unique_lock<std::mutex> &lock);
    void handle(CardEvent &event, std::unique_lock<std::mutex> &lock);
    void announce(ProactiveCommand command, std::unique_lock<std::mutex> &lock);
    void reportEndOfSession(std::unique_lock<std::mutex> &lock);
    void reportTimeOut(std::unique_lock<std::mutex> &lock);
    void callCommand(int32_t type, int16_t id, bool timeOut, std::unique_lock<std::mutex> &lock);
    bool isCurrent(int16_t id) const;
    void holdBack(std::unique_lock<std::mutex> &lock);
    void tellListener(int32_t type);
    void callDevice(int code, std::unique_lock<std::mutex> &lock);

    Transcript m_transcript;
    std::mutex m_mutex;
    Alarm m_alarm; // for the session's thread
    std::condition_variable m_returned; // a callback has returned

    MOVA_STKCallback m_commandCallback = nullptr;
    MOVA_DevMgrCallback m_deviceCallback = nullptr;
    Running m_running = Running::None;
    int m_selections = 0; // that the card has not heard of yet
    int m_answering = 0; // calls under way that answer, on other threads than the session's
    Card::Time m_heldUntil; // since the last one returned
    Card::Time m_toldAt; // when the command callback has last returned

    std::shared_ptr<Card> m_card;
    std::vector<std::shared_ptr<Card>> m_oldCards; // to be destroyed on the session's thread
    CardTraits m_traits;
    unsigned m_epoch = 0; // changes where what the card is doing no longer counts
    bool m_removed = false;
    bool m_underWay = false; // a proactive session that is more than the card's main menu
    std::optional<ProactiveCommand> m_menu;
    std::optional<CommandInProgress> m_current;
    int16_t m_lastCommandId = 0;
    std::optional<int16_t> m_lateKeyId; // a yes-no question that ended unanswered

    // Called with its lock held, so that none is running when its successor has been set.
    std::mutex m_listenerMutex;
    CardHost::CommandListener m_commandListener;

    std::deque<Request> m_requests;
    bool m_stop = false;
    bool m_ended = false; // the thread is done with everything here
    std::thread m_thread;
};

#endif
