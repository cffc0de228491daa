#ifndef IDESTROYEVENT_H
#define IDESTROYEVENT_H

/* How the host announces its end to a plug-in. */
class IDestroyEvent {
public:
    virtual ~IDestroyEvent() { }

    /* The host is about to delete the root object. */
    virtual void OnDestroy() = 0;
    /* Withdraw every callback from the host's libraries.  Called before OnDestroy, and before the
     * root object is deleted; no callback may reach the plug-in afterwards. */
    virtual void UnSDKRegisterEvent() = 0;
};

#endif
