#ifndef CHANGE_H
#define CHANGE_H

#include <QString>

#include "HostUiGlobal.h"

/* Translation of text identifiers into the host's language.  GUI thread only. */
class HOSTUI_API Change {
public:
    /* The text of the identifier in the context, or the identifier itself where the language has
     * none. */
    static QString tr(QString id, QString context);
};

#endif
