#ifndef SERVICE_H
#define SERVICE_H

#include "session/Session.h"

/// The session of the process, which the C functions and the host share.  It ends with the process.
Session &theSession();

#endif
