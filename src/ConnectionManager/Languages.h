#ifndef LANGUAGES_H
#define LANGUAGES_H

#include <QString>
#include <QStringList>

#include "CardHost.h"

/// The languages of the user interface.
namespace Languages {

/// Codes in the order of the menu: "en", "de", ...
QStringList codes();
bool isKnown(const QString &code);

/// The language's name in itself, for a menu that everybody can read.
QString nativeName(const QString &code);

/// The language of the user's desktop, English where it is none of ours.
QString ofDesktop();

/// Switches the catalogues of the host, of its plug-ins and of Qt's own dialogs, and the direction
/// of all layouts.  False when the host's catalogue cannot be read.
bool apply(const QString &code);

/// The text between isolating marks, for what reads from left to right in every language.
QString leftToRight(const QString &text);

/// The host's text for the identifier, in the current language.
QString text(const char *id);
/// The same for what the modem service has to say; English where there is none.
QString text(const CardHost::Notice &notice);

} // namespace Languages

#endif
