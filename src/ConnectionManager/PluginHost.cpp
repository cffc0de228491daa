#include "PluginHost.h"

#include <QApplication>
#include <QFileInfo>
#include <QRect>
#include <QVersionNumber>
#include <QWidget>

#include "host/INotify.h"
#include "host/IUIPlugin.h"
#include "platform/ExtendDialog.h"

namespace {

constexpr unsigned LanguageChanged = 0x400;

QList<QPointer<ExtendDialog>> pluginWindows()
{
    QList<QPointer<ExtendDialog>> windows;
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *window = qobject_cast<ExtendDialog *>(widget))
            windows << window;
    }
    return windows;
}

} // namespace

QString verificationError(const char *data, const QString &runningVersion)
{
    if (!data)
        return "it has no verification data of a plug-in";
    const QStringList lines = QString::fromLatin1(data).split('\n');
    if (lines.first() != "pattern=QT_PLUGIN_VERIFICATION_DATA")
        return "its verification data are not those of a plug-in";
    const QString key = "version=";
    const QString versionLine = lines.value(1);
    const auto built = versionLine.startsWith(key)
        ? QVersionNumber::fromString(versionLine.mid(key.size()))
        : QVersionNumber();
    const auto running = QVersionNumber::fromString(runningVersion);
    if (built.isNull())
        return QString("its verification data name no version of Qt (found \"%1\")")
            .arg(versionLine);
    if (built.majorVersion() != running.majorVersion() || built > running) {
        return QString("it was built with Qt %1, this application runs with Qt %2")
            .arg(built.toString(), runningVersion);
    }
    return {};
}

PluginHost::~PluginHost()
{
    unload();
}

QString PluginHost::load(const QString &pluginsFolder)
{
    const QString file = pluginsFolder + "/STKPlugin/libSTKPlugin.so";
    const QString error = QFileInfo::exists(file) ? start(file) : QString("no such file");
    if (error.isEmpty())
        return {};
    unload();
    return QString("cannot load the SIM toolkit plug-in %1: %2").arg(file, error);
}

QString PluginHost::start(const QString &file)
{
    m_library.setFileName(file);
    if (!m_library.load())
        return m_library.errorString().simplified();
    using Verification = const char *(*)();
    const auto verification =
        reinterpret_cast<Verification>(m_library.resolve("qt_plugin_query_verification_data"));
    const QString mismatch = verificationError(verification ? verification() : nullptr, qVersion());
    if (!mismatch.isEmpty())
        return mismatch;
    m_loader.setFileName(file);
    m_root = m_loader.instance();
    if (!m_root)
        return m_loader.errorString().simplified();
    m_ui = qobject_cast<IUIPlugin *>(m_root.data());
    m_notify = qobject_cast<INotify *>(m_root.data());
    if (!m_ui || !m_notify)
        return "it is no user-interface plug-in of this application";
    if (!m_ui->Init())
        return QString("it could not start (error %1)").arg(m_ui->GetLastError());
    return {};
}

void PluginHost::unload()
{
    // The windows' code is the plug-in's: none may outlive it, not even one whose deletion is
    // pending.
    for (const QPointer<ExtendDialog> &window : pluginWindows())
        delete window.data();
    if (m_ui) {
        m_ui->UnSDKRegisterEvent();
        m_ui->OnDestroy();
    }
    m_ui = nullptr;
    m_notify = nullptr;
    delete m_root.data();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    if (m_loader.isLoaded())
        m_loader.unload();
    if (m_library.isLoaded())
        m_library.unload();
}

bool PluginHost::showWindow(QWidget *parent)
{
    if (!m_ui)
        return false;
    QRect area = parent->rect();
    return m_ui->ShowWindow(parent, area);
}

bool PluginHost::isWindowOpen() const
{
    for (const QPointer<ExtendDialog> &window : pluginWindows()) {
        if (window->isVisible())
            return true;
    }
    return false;
}

void PluginHost::languageChanged(const QString &language)
{
    if (!m_ui)
        return;
    m_ui->ChangeLang(language);
    m_notify->Notify(LanguageChanged, 0, 0);
}

QString PluginHost::description() const
{
    if (!m_ui)
        return {};
    const int version = m_ui->GetVersion();
    return QString("%1 %2.%3").arg(m_ui->GetPluginName()).arg(version >> 8).arg(version & 0xff);
}
