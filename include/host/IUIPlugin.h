#ifndef IUIPLUGIN_H
#define IUIPLUGIN_H

#include "IBasePlugin.h"

class QRect;
class QWidget;

/* A plug-in with a window of its own. */
class IUIPlugin : public IBasePlugin {
public:
    /* Shows the plug-in's window over pParent and returns at once; false when nothing could be
     * shown.  A plug-in whose window has a size of its own passes over the area. */
    virtual bool ShowWindow(QWidget *pParent, QRect &area) = 0;
    /* These four are for windows that are a part of the host's.  With one that the user opens and
     * closes they do nothing, and return 0 or false. */
    virtual int DoModal() = 0;
    virtual void Hide() = 0;
    virtual void FitSize(QRect &area) = 0;
    virtual bool IsReady() = 0;
    /* The name of the language that the host has changed to; false when it is empty.  The texts
     * change when INotify tells that they have. */
    virtual bool ChangeLang(const QString &strLang) = 0;
};

Q_DECLARE_INTERFACE(IUIPlugin, "com.velora.linkassistant.plugin.IUIPlugin")

#endif
