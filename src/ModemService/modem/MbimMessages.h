#ifndef MBIMMESSAGES_H
#define MBIMMESSAGES_H

#include <cstdint>
#include <optional>
#include <string>

#include "MbimLink.h"
#include "MbimSupport.h"
#include "toolkit/PortReports.h"

/// What an MBIM modem is told of its card and its toolkit, and what is read in what it says (MBIM
/// 1.0, services Basic Connect and STK).  What cannot be read is nothing.
namespace MbimMessages {

using Message = MbimLink::Message;

Message enterPin(const Pin &pin);
/// To be told what the card sends, and whether it is there.
Message subscribe();
Message terminalResponse(const cat::Bytes &data);
Message envelope(const cat::Bytes &data);

/// For people: "stk pac set" of a question, "stk pac" of what the modem says.
std::string nameOf(const MbimMessage &message);
/// For people: what came of the question, and whom the modem leaves which commands to.
std::string inWords(const MbimLink::Result &result);

std::optional<bool> offersToolkit(const MbimMessage &services);

enum class CardState { There, Starting, Missing };
CardState cardStateIn(const MbimMessage &answer);
std::optional<CardState> cardStateNotified(const MbimMessage &notification);

struct PinState {
    enum { Free, Wanted, Blocked } lock = Free;
    int triesLeft = 0; ///< of a PIN that is wanted; zero: the modem does not tell
};
PinState pinStateIn(const MbimMessage &answer);

std::optional<MbimSupport> supportIn(const MbimMessage &answer);
/// The card's, to a terminal response; zero: the modem does not tell.
uint16_t statusIn(const MbimMessage &answer);

struct Notified {
    cat::ByteView command; ///< in the message
    bool wantsAnswer;
};
std::optional<Notified> commandNotified(const MbimMessage &notification);

} // namespace MbimMessages

#endif
