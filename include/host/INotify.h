#ifndef INOTIFY_H
#define INOTIFY_H

#include <QObject>

/* How the host tells a plug-in of a change, on the GUI thread.  The codes and their parameters are
 * the host's; a plug-in passes over those that it has no use for.  0x400, whose parameters mean
 * nothing, tells that Change::tr() has the texts of another language from now on. */
class INotify {
public:
    virtual ~INotify() { }

    /* The result means nothing. */
    virtual int Notify(unsigned int uCode, unsigned int uParam1, unsigned int uParam2) = 0;
};

Q_DECLARE_INTERFACE(INotify, "com.velora.linkassistant.plugin.INotify")

#endif
