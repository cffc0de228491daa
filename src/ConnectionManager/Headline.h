#ifndef HEADLINE_H
#define HEADLINE_H

#include "CardHost.h"

/// The identifier of the text that says how the modem is.  `problem` is what is in the way; null
/// where nothing is.  `awaitsMenu` is a card that may have a menu and has not sent it yet.
const char *headlineId(CardHost::ModemState state, const CardHost::Notice *problem, bool asksPin,
                       bool awaitsMenu);

/// Whether the problem is over once the card's menu has come.
bool isOverWithMenu(const CardHost::Notice &problem);

#endif
