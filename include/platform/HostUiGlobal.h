#ifndef HOSTUIGLOBAL_H
#define HOSTUIGLOBAL_H

#include <QtGlobal>

#if defined(HOSTUI_LIBRARY)
#define HOSTUI_API Q_DECL_EXPORT
#else
#define HOSTUI_API Q_DECL_IMPORT
#endif

#endif
