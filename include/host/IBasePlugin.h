#ifndef IBASEPLUGIN_H
#define IBASEPLUGIN_H

#include <QObject>
#include <QString>

#include "IBaseInterface.h"
#include "IDestroyEvent.h"

/* Identity and start-up of a plug-in.  What type and version mean is the host's to say. */
class IBasePlugin : public IBaseInterface, public IDestroyEvent {
public:
    /* Called once, before the plug-in is used; false when it cannot be. */
    virtual bool Init() = 0;
    virtual int GetPluginType() = 0;
    /* The same for every version of the plug-in. */
    virtual QString GetCLSID() = 0;
    virtual int GetVersion() = 0;
    virtual QString GetPluginName() = 0;
    virtual bool IsAllowRelease() = 0;
    /* A further interface, by a number of the host's; where there is none, 0, and *ppObject stays
     * as it was. */
    virtual int QueryInterface(int iInterface, QObject **ppObject) = 0;
};

Q_DECLARE_INTERFACE(IBasePlugin, "com.velora.linkassistant.plugin.IBasePlugin")

#endif
