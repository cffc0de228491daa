#include "HostUi.h"

#include <QDesktopServices>

#include "HostUiState.h"

namespace HostUi {

State &state()
{
    static State s;
    return s;
}

void setMainWindow(QWidget *window)
{
    state().mainWindow = window;
}

void setPluginLibraryPath(const QString &path)
{
    state().pluginLibraryPath = path;
}

bool setLanguage(const QString &folder, const QString &language)
{
    return state().catalogue.load("host_" + language, folder);
}

void setUrlOpener(const UrlOpener &opener)
{
    state().urlOpener = opener;
}

void setUrlRefusalListener(const UrlRefusalListener &listener)
{
    state().urlRefusalListener = listener;
}

void setSoundListener(const SoundListener &listener)
{
    state().soundListener = listener;
}

bool openInBrowser(const QUrl &url)
{
    return QDesktopServices::openUrl(url);
}

} // namespace HostUi
