#include "ServiceStatus.h"

const char *statusText(int32_t status)
{
    switch (status) {
    case StatusSuccess:
        return "success";
    case StatusNoCard:
        return "no card";
    case StatusModemRemoved:
        return "the modem was removed";
    case StatusNoMenu:
        return "no main menu";
    case StatusNotInProgress:
        return "no such command in progress";
    case StatusWrongCommand:
        return "another kind of command is in progress";
    case StatusUnknownItem:
        return "no such item";
    case StatusBadArgument:
        return "bad argument";
    case StatusRegistered:
        return "another callback is registered";
    case StatusNotRegistered:
        return "not registered";
    case StatusNotEncodable:
        return "the card's coding cannot carry the text";
    case StatusTooLong:
        return "the text is longer than a terminal response takes";
    default:
        return "";
    }
}
