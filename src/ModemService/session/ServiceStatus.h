#ifndef SERVICESTATUS_H
#define SERVICESTATUS_H

#include <cstdint>

/// What the functions of the service return.  A card may make any of them return another number:
/// see Faults.
enum ServiceStatus : int32_t {
    StatusSuccess = 0,
    StatusNoCard = -1, ///< no card is in the modem
    StatusModemRemoved = -2, ///< the modem was pulled out
    StatusNoMenu = -3, ///< the card has not sent its main menu yet
    StatusNotInProgress = -4, ///< no command with this identifier waits for this call
    StatusWrongCommand = -5, ///< the command in progress is of another kind
    StatusUnknownItem = -6, ///< the menu has no item with this identifier
    StatusBadArgument = -7, ///< a null pointer, or a number without a meaning here
    StatusRegistered = -8, ///< another callback is registered
    StatusNotRegistered = -9, ///< this callback is not the registered one
    StatusNotEncodable = -10, ///< the card's coding cannot carry the text
    StatusTooLong = -11 ///< a terminal response has no room for the text
};

/// The same in words, for the transcript; empty for a number that is not in the list.
const char *statusText(int32_t status);

#endif
