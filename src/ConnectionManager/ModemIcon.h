#ifndef MODEMICON_H
#define MODEMICON_H

#include <QIcon>
#include <QPixmap>

#include "CardHost.h"

namespace ModemIcon {

/// A SIM card: the program's icon.
QIcon simCard();

/// Drawn, so that it is sharp at every size: a SIM card with signal bars: full and coloured while
/// the modem is there, grey and empty otherwise.  size is in device-independent pixels.
QPixmap forState(CardHost::ModemState state, int size, qreal devicePixelRatio);

} // namespace ModemIcon

#endif
