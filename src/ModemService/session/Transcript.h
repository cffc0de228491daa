#ifndef TRANSCRIPT_H
#define TRANSCRIPT_H

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "CardHost.h"
#include "ProactiveCommand.h"
#include "cat/Bytes.h"

/// What passes between card and terminal, told to whoever listens.
///
/// Writing and telling are two steps: entries are written in the order in which things happen,
/// under whatever lock guards that order, and told by deliver(), which is called without that lock.
class Transcript {
public:
    int addListener(CardHost::TranscriptListener listener);
    /// No call of the listener runs after this returns, except the one that it is called from.
    void removeListener(int id);
    void removeAllListeners();

    void cardOpened(const std::string &name);
    void cardClosed();
    void device(bool ready);
    void command(int16_t id, const CommandBody &body);
    /// `function` is the call that answered, none where the modem did.
    void response(int16_t id, const CommandBody &body, const TerminalResponse &response,
                  std::optional<ServiceFunction> function);
    /// The card did not wait for the answer to this command.
    void overtaken(int16_t id, const CommandBody &body);
    void selection(const CommandMenuItem &item);
    void timeOut(int16_t id);
    void endOfSession(int16_t id);
    /// A call that failed; `id` is the command that it was about.
    void refused(ServiceFunction function, std::optional<int16_t> id, int32_t status);

    /// What a card in a reader says of itself.
    void notice(const CardHost::Notice &notice);
    /// A proactive command that the modem answered without telling anybody, with the result in
    /// words.
    void answeredByModem(const std::string &command, const std::string &result);
    /// One command to the card, and its answer with the status words.
    void apdu(cat::ByteView command, cat::ByteView response);
    /// What was said with a modem in its own language.
    void spoken(bool byModem, const std::string &line);

    /// Tells the listeners what was written.  When it returns, everything that was written before
    /// the call has been told, by this thread or another; called from a listener it returns at
    /// once.
    void deliver();

    /// Holds the lock that guards the order of what is written; at its end lets it go and tells.
    class Scope {
    public:
        Scope(Transcript &transcript, std::mutex &mutex)
            : m_transcript(transcript)
            , m_lock(mutex)
        {
        }
        ~Scope()
        {
            m_lock.unlock();
            m_transcript.deliver();
        }

    private:
        Transcript &m_transcript;
        std::unique_lock<std::mutex> m_lock;
    };

private:
    struct Line; // an entry under construction

    void append(const Line &line);
    bool hasListeners(); // no entry is written for nobody
    void tell(std::unique_lock<std::mutex> &lock, const CardHost::TranscriptEntry &entry);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::map<int, CardHost::TranscriptListener> m_listeners;
    int m_lastId = 0;
    std::deque<CardHost::TranscriptEntry> m_entries;
    std::thread::id m_teller; // the thread inside deliver()
    int m_told = 0; // the listener that is being called
};

#endif
