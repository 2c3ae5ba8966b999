// A library that has no creator, only something else.

#include "framework/Export.h"

extern "C" ZERVA_EXPORT int somethingElse() { return 0; }
