#ifndef IBASEINTERFACE_H
#define IBASEINTERFACE_H

/* What every interface of a plug-in offers.  The host calls through the table of virtual
 * operations: their order here, and in the other files of this folder, is a binary interface.
 * They are called on the GUI thread. */
class IBaseInterface {
public:
    virtual ~IBaseInterface() { }

    /* The host is done with the interface; the object lives on until the host deletes it. */
    virtual void Release() = 0;
    /* Why the last operation failed, a code of the host's; 0 for nothing. */
    virtual int GetLastError() = 0;
};

#endif
