#ifndef HOSTUISTATE_H
#define HOSTUISTATE_H

#include <QPointer>
#include <QTranslator>
#include <QWidget>

#include "HostUi.h"

namespace HostUi {

/// What the host set, shared by the library's own files.
struct State {
    QPointer<QWidget> mainWindow;
    QString pluginLibraryPath;
    QTranslator catalogue;
    UrlOpener urlOpener;
    UrlRefusalListener urlRefusalListener;
    SoundListener soundListener;
};

State &state();

} // namespace HostUi

#endif
