#ifndef STKPLUGIN_H
#define STKPLUGIN_H

#include <QObject>

#include "host/INotify.h"
#include "host/IUIPlugin.h"

class STKDialog;

/* The root object that the host obtains from the library.  It owns the toolkit window's singleton
 * and hands it what matters. */
class STKPlugin : public QObject, public IUIPlugin, public INotify {
    Q_OBJECT
#if QT_VERSION >= 0x050000
    Q_PLUGIN_METADATA(IID "com.velora.linkassistant.plugin.IUIPlugin")
#endif
    // In the order in which the casts are to be tried.
    Q_INTERFACES(IBasePlugin IUIPlugin INotify)

public:
    STKPlugin();
    ~STKPlugin();

    bool ShowWindow(QWidget *pParent, QRect &area) override;
    int DoModal() override;
    void Hide() override;
    void FitSize(QRect &area) override;
    bool IsReady() override;
    bool Init() override;
    bool ChangeLang(const QString &strLang) override;
    int GetPluginType() override;
    QString GetCLSID() override;
    int GetVersion() override;
    QString GetPluginName() override;
    bool IsAllowRelease() override;
    void Release() override;
    int GetLastError() override;
    void OnDestroy() override;
    int Notify(unsigned int uCode, unsigned int uParam1, unsigned int uParam2) override;
    int QueryInterface(int iInterface, QObject **ppObject) override;
    void UnSDKRegisterEvent() override;

private:
    STKDialog *m_pStkDialog;
};

#endif
