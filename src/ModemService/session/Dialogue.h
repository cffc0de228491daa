#ifndef DIALOGUE_H
#define DIALOGUE_H

#include <chrono>
#include <cstdint>
#include <optional>

#include "Card.h"
#include "ProactiveCommand.h"
#include "Transcript.h"

/// What card and terminal say to each other: the command in progress with its identifier, whether
/// it waits for its answer and until when, which calls fit it, and whether a session is under way.
/// All of it goes into the transcript.
///
/// Without a lock or a clock: its owner's hold for it.
class Dialogue {
public:
    using Time = Card::Time;

    explicit Dialogue(Transcript &transcript);

    /// What the terminal is to be told.
    struct Word {
        int32_t type = MOVA_STKTYPE_END_SESSION;
        int16_t id = 0;
        bool timeOut = false;
        bool isCommand = false;
    };

    // The card's part.

    /// A command, in place of the one before.  `modemTime` is what the modem takes for one that it
    /// answers by itself.
    Word begin(ProactiveCommand command, std::chrono::milliseconds modemTime, Time now);
    /// The session is over, if need be one that nobody saw begin.
    Word end();
    Word timeOut();
    /// The card says that its session is over, which may be no news to the terminal.
    std::optional<Word> endByCard();
    /// Card or modem are gone, and what they said does not count any more.
    std::optional<Word> forget();
    /// The end, for who did not hear of it; nothing where something is in progress.
    std::optional<Word> endAgain();

    // The terminal's part.

    /// The open command was answered; its details may still be asked for.  `function` is the call
    /// that answered, none where the modem did.
    void answer(const TerminalResponse &response, std::optional<ServiceFunction> function);
    /// The user went on to something else.  What the card is still to be told, if anything.
    std::optional<TerminalResponse> leave();
    /// A choice from the main menu, which begins a session...
    void choose(const CommandMenuItem &item);
    /// ...and reaches the card only now.  It may have sent a command before: the same as leave().
    std::optional<TerminalResponse> deliverChoice();

    /// The command that waits for its answer; null for none.
    const ProactiveCommand *open() const { return m_command && m_open ? &*m_command : nullptr; }
    /// The command in progress, answered or not; null for none.
    const ProactiveCommand *command() const { return m_command ? &*m_command : nullptr; }
    int16_t id() const { return m_id; } ///< of the last command
    /// When the answer is due, which is overdue then.
    Time deadline() const { return open() ? m_deadline : Time::max(); }
    /// Whether an open one is the user's to answer, not the modem's.
    bool waitsForUser() const { return open() && !isAnsweredByModem(m_command->body); }
    /// A proactive session that is more than the card's main menu.
    bool isUnderWay() const { return m_underWay; }
    /// Whether the word is still to be told: the user may have gone on meanwhile, and it would be
    /// taken for the card's next one.
    bool isNews(const Word &word) const;

    /// Success for a call that fits the command in progress, and which that wants to work.
    int32_t status(ServiceFunction function, int16_t id, int32_t type) const;
    /// The status that the command wants the call to return; success where it wants none.
    int32_t fault(ServiceFunction function) const;
    /// Whether that was a yes-no question that ended unanswered; true once.
    bool isLateKey(int16_t id);

private:
    bool is(int16_t id) const { return m_command && m_id == id; }
    void drop();
    int16_t newId();

    Transcript &m_transcript;
    std::optional<ProactiveCommand> m_command;
    int16_t m_id = 0;
    bool m_open = false;
    Time m_deadline;
    int16_t m_lastId = 0; // of a word of any kind
    std::optional<int16_t> m_lateKey;
    bool m_underWay = false;
    int m_choices = 0; // that the card has not heard of yet
};

#endif
