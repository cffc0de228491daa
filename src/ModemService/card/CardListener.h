#ifndef CARDLISTENER_H
#define CARDLISTENER_H

#include <string>

#include "CardHost.h"
#include "cat/Bytes.h"

/// One command to the card and what it answered, status words last; empty where it did not.  What
/// must not be written down is blanked out.
struct ApduTraffic {
    cat::Bytes command;
    cat::Bytes response;
};

/// Who hears of what a card in a reader does besides its proactive commands.  Every function is
/// called on the session's thread.
class CardListener {
public:
    virtual ~CardListener() = default;

    virtual void exchanged(const ApduTraffic &traffic) = 0;
    /// The modem carried out a proactive command by itself, or refused it: the command's name with
    /// its details, and the result, in words.
    virtual void answeredByModem(const std::string &command, const std::string &result) = 0;
    virtual void noticed(const CardHost::Notice &notice) = 0;
    virtual void pinWanted(const CardHost::PinRequest &request) = 0;
    /// The request before is over.
    virtual void pinDone() = 0;
};

#endif
