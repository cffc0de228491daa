#include "Headline.h"

using CardHost::ModemState;
using CardHost::Notice;

const char *headlineId(ModemState state, const Notice *problem, bool asksPin, bool awaitsMenu)
{
    if (asksPin)
        return "IDS_CM_STATE_WAITING_PIN";
    // The modem and its card may be there all the same.
    if (problem && problem->awaited == Notice::Awaited::Toolkit)
        return "IDS_CM_STATE_WAITING_TOOLKIT";
    if (problem && problem->awaited == Notice::Awaited::Nothing)
        return "IDS_CM_STATE_NO_TOOLKIT";
    switch (state) {
    case ModemState::Removed:
        if (!problem)
            return "IDS_CM_STATE_REMOVED";
        return problem->awaited == Notice::Awaited::Modem ? "IDS_CM_STATE_WAITING_MODEM"
                                                          : "IDS_CM_STATE_WAITING";
    case ModemState::Ready:
        return awaitsMenu ? "IDS_CM_STATE_WAITING_TOOLKIT" : "IDS_CM_STATE_READY";
    case ModemState::Busy:
        return "IDS_CM_STATE_BUSY";
    case ModemState::NoCard:
        break;
    }
    return "IDS_CM_STATE_NO_CARD";
}

bool isOverWithMenu(const Notice &problem)
{
    return problem.awaited == Notice::Awaited::Toolkit ||
        problem.awaited == Notice::Awaited::Nothing;
}
