#ifndef IBASEINTERFACE_H
#define IBASEINTERFACE_H

/* What every interface of a plug-in offers.  The host calls through the table of virtual
 * operations: their order here, and in the other files of this folder, is a binary interface. */
class IBaseInterface {
public:
    virtual ~IBaseInterface() { }

    virtual void Release() = 0;
    /* A code of the host's. */
    virtual int GetLastError() = 0;
};

#endif
