#pragma once

#include <QtCore/qglobal.h>

/** Marks what the shared library offers to other programs; everything else stays hidden in it. */
#if defined(VANTORAUDIOENGINE_BUILD)
#    define VANTORAUDIOENGINE_EXPORT Q_DECL_EXPORT
#else
#    define VANTORAUDIOENGINE_EXPORT Q_DECL_IMPORT
#endif
