#ifndef PORTREPORTS_H
#define PORTREPORTS_H

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "cat/Bytes.h"
#include "platform/ModemService.h"

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
    int id = newId(); ///< for the answer, which may come late and must not meet another card
    std::string card; ///< for people
    int triesLeft = 0; ///< after the last one the card is blocked; 0: nobody tells
    bool wrong = false; ///< the PIN before this request was wrong

    /// Never the same in one process.
    static int newId();
};

/// One command to the card and what it answered, status words last.  What must not be written down
/// is blanked out.  A modem's traffic stands here as the commands that it makes of it.
struct PortTraffic {
    cat::Bytes command;
    cat::Bytes response; ///< empty: there was no answer
};

/// Something to tell people about a card, a reader or a modem; see noticeOf() in Notices.h.
struct Notice {
    /// What is to come, or to come back, before things can go on.
    enum class Awaited {
        Card,
        Modem,
        Toolkit, ///< of a modem whose card may be there
        Nothing ///< the modem offers no toolkit
    };

    std::string id; ///< of the text in the host's catalogues, "IDS_CM_NOTICE_CARD_SILENT"
    /// What stands for %1, %2 ... there: names of readers, status words...
    std::vector<std::string> arguments;
    std::string text; ///< the same in English with the arguments in it, one line of UTF-8
    bool problem = false; ///< something is in the way
    Awaited awaited = Awaited::Card; ///< where it is a problem
};

/// Who hears of what a port and its terminal do besides the card's commands.  Every function is
/// called on the session's thread.
class PortReports {
public:
    virtual ~PortReports() = default;

    virtual void exchanged(const PortTraffic &traffic) = 0;
    /// The terminal carried out a proactive command by itself, or refused it: the command's name
    /// with its details, and the result, in words.
    virtual void answeredByTerminal(const std::string &command, const std::string &result) = 0;
    /// One line of what is said with a modem in its own language: an AT line, or the name of an
    /// MBIM message and what came of it.  What must not be written down is blanked out.
    virtual void spoken(bool /*byModem*/, const std::string & /*line*/) { }
    virtual void noticed(const Notice &notice) = 0;
    virtual void pinWanted(const PinRequest &request) = 0;
    /// The request before is over.
    virtual void pinDone() = 0;
};

#endif
