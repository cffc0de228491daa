#ifndef HOSTUI_H
#define HOSTUI_H

#include <functional>

#include <QString>
#include <QUrl>

#include "platform/HostUiGlobal.h"

class QWidget;

/// The host's side of the host UI library: what the application sets so that the classes of
/// include/platform can serve its plug-ins.  GUI thread only.
namespace HostUi {

/// The window that CommonUtils::GetMainWindow() returns; forgotten when it is deleted.
HOSTUI_API void setMainWindow(QWidget *window);

/// What CommonUtils::GetPluginLibraryPath() returns: the folder that holds the folder "plugins".
HOSTUI_API void setPluginLibraryPath(const QString &path);

/// Loads the catalogue host_<language>.qm of the folder for Change::tr().  False when it cannot be
/// read; Change::tr() then returns its identifiers.
HOSTUI_API bool setLanguage(const QString &folder, const QString &language);

/// Opens an address that CommonUtils::OpenUrl() accepted; false when it could not.
using UrlOpener = std::function<bool(const QUrl &)>;

/// Who opens accepted addresses; an empty opener brings back the user's browser.
HOSTUI_API void setUrlOpener(const UrlOpener &opener);

/// The user's browser: the opener that is used until another one is set.
HOSTUI_API bool openInBrowser(const QUrl &url);

/// Why an address is not opened.
enum UrlRefusal { NotAnAddress, SchemeNotAllowed, NoHost };

/// Told of each address that CommonUtils::OpenUrl() refused: bounded, and without characters that
/// cannot be printed.
using UrlRefusalListener = std::function<void(const QString &address, UrlRefusal reason)>;

/// Who hears of refused addresses; an empty listener hears of none.
HOSTUI_API void setUrlRefusalListener(const UrlRefusalListener &listener);

/// Told of each sound file that is to be played, before it is known whether it can be.
using SoundListener = std::function<void(const QString &fileName)>;

/// Who hears of sound files; an empty listener hears of none.
HOSTUI_API void setSoundListener(const SoundListener &listener);

} // namespace HostUi

#endif
