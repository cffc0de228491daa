#ifndef MODEMICON_H
#define MODEMICON_H

#include <QIcon>
#include <QPixmap>

#include "CardHost.h"

/// Pictures that are drawn, so that they are sharp at every size and need no files.
namespace ModemIcon {

/// A SIM card.
QIcon simCard();

/// A SIM card with signal bars: full and coloured while the modem is there, grey and empty
/// otherwise.  size is in device-independent pixels.
QPixmap forState(CardHost::ModemState state, int size, qreal devicePixelRatio);

} // namespace ModemIcon

#endif
