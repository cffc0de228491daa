#ifndef MODEMFAULTS_H
#define MODEMFAULTS_H

#include <optional>
#include <random>
#include <string>
#include <vector>

#include "cat/Bytes.h"

/// What a modem may do other than expected.
enum class Fault {
    // To one message of the terminal, or to each.
    Slow, ///< the answer comes, seconds later
    Never, ///< the message is lost
    Garbage, ///< random bytes in place of the answer
    HangUp, ///< the modem is unplugged, and back after a moment
    Error, ///< refused
    Busy, ///< refused: busy
    NoFinal, ///< carried out; what says so is missing
    WrongFinal, ///< carried out; what says so is wrong
    Early, ///< what follows from the message comes before its answer
    Split, ///< everything in pieces of random length
    Bytes, ///< everything byte by byte
    // How the modem is.
    Late, ///< it starts the card's toolkit before anybody listens, and repeats nothing
    Again, ///< each proactive command comes twice
    NoEnd, ///< the end of a session is not told
    Off, ///< its firmware has no toolkit
    // By AT.
    Quoted, ///< proactive commands in quotes
    Unquoted, ///< takes and sends no quotes
    Tight, ///< no blank behind a colon
    Forms, ///< answers take other forms by turns
    EarlyEnd, ///< the end of the session is told before SET UP MENU is answered
    Echo, ///< cannot be switched off
    Words, ///< errors in words
    Bare, ///< knows nothing but the terminal response and the envelope
    // By MBIM.
    Fragments, ///< of 64 bytes
    Padding, ///< zeros behind each proactive command
    Notified, ///< SET UP MENU is told and not to be answered
    Decimal, ///< types of commands are counted in decimal
    LatePin ///< a right PIN shows its effect only after some questions
};

/// When a modem misbehaves, and how.
class ModemFaults {
public:
    enum Protocol { At = 1, Mbim = 2 };

    /// "FAULT": always; "FAULT@N": at the terminal's N-th message, counted over the program's life;
    /// "FAULT@each": at the first message after the port was opened, next time at the second, and
    /// so on; a number: at random, from this seed.  False where the text is none of these.
    bool add(const std::string &text, Protocol protocol);
    /// Nobody knows what to expect.
    bool isRandom() const { return m_isRandom; }

    void portOpened();
    /// The terminal's next message.
    void nextMessage();
    long messages() const { return m_messages; }
    bool has(Fault fault) const;
    /// The fault of this message alone; null where there is none.
    const char *nameOfMoment() const;

    /// How long the next piece of what is sent may be.
    size_t pieceLength();
    cat::Bytes garbage();

private:
    struct Entry {
        enum class When { Always, Once, Each };
        Fault fault;
        When when = When::Always;
        long at = 1;
    };

    bool isNow(const Entry &entry) const;
    unsigned from(unsigned lowest, unsigned highest);

    std::vector<Entry> m_entries;
    std::optional<Fault> m_drawn; // at random, for this message
    bool m_isRandom = false;
    long m_messages = 0;
    long m_messagesOfPort = 0;
    std::mt19937 m_engine;
};

#endif
