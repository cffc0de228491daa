#ifndef INOTIFY_H
#define INOTIFY_H

#include <QObject>

/* How the host tells a plug-in of a change.  The codes and their parameters are the host's. */
class INotify {
public:
    virtual ~INotify() { }

    virtual int Notify(unsigned int uCode, unsigned int uParam1, unsigned int uParam2) = 0;
};

Q_DECLARE_INTERFACE(INotify, "com.velora.linkassistant.plugin.INotify")

#endif
