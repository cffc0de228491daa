#ifndef PLUGINHOST_H
#define PLUGINHOST_H

#include <memory>

#include <QLibrary>
#include <QPluginLoader>
#include <QPointer>
#include <QString>

class INotify;
class IUIPlugin;
class QWidget;

/// The SIM toolkit plug-in from its file to its end.  GUI thread only.
class PluginHost {
public:
    PluginHost() = default;
    ~PluginHost();
    PluginHost(const PluginHost &) = delete;
    PluginHost &operator=(const PluginHost &) = delete;

    /// Loads STKPlugin/libSTKPlugin.so of the folder and starts it.  The result is empty, or one
    /// line that names the file and says what is wrong with it; nothing stays loaded then.
    QString load(const QString &pluginsFolder);

    /// Ends the plug-in: its windows are deleted, its callbacks withdrawn, its code unloaded.  No
    /// code of the plug-in may be running.
    void unload();

    /// Shows the plug-in's window over the parent; false when it could not.
    bool showWindow(QWidget *parent);
    /// Whether one of the plug-in's windows is up.
    bool isWindowOpen() const;
    /// Tells the plug-in that the texts of its windows have changed.
    void languageChanged(const QString &language);
    /// Name and version, for people.
    QString description() const;

private:
    QString start(const QString &file);

    QLibrary m_library;
    QPluginLoader m_loader;
    QPointer<QObject> m_root;
    IUIPlugin *m_ui = nullptr;
    INotify *m_notify = nullptr;
};

/// What is wrong with the verification data of a plug-in for an application that runs with this
/// version of Qt; empty when it fits.  The data are lines "key=value", the first of them
/// "pattern=QT_PLUGIN_VERIFICATION_DATA"; a null text stands for a plug-in without any.
QString verificationError(const char *data, const QString &runningVersion);

#endif
