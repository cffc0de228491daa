#ifndef IUIPLUGIN_H
#define IUIPLUGIN_H

#include "IBasePlugin.h"

class QRect;
class QWidget;

/* A plug-in with a window of its own. */
class IUIPlugin : public IBasePlugin {
public:
    /* Shows the plug-in's window over pParent; false when nothing could be shown. */
    virtual bool ShowWindow(QWidget *pParent, QRect &area) = 0;
    virtual int DoModal() = 0;
    virtual void Hide() = 0;
    virtual void FitSize(QRect &area) = 0;
    virtual bool IsReady() = 0;
    virtual bool ChangeLang(const QString &strLang) = 0;
};

Q_DECLARE_INTERFACE(IUIPlugin, "com.velora.linkassistant.plugin.IUIPlugin")

#endif
