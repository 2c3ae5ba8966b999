#include "framework/Export.h"

extern "C" int needed();

extern "C" ZERVA_EXPORT int callNeeded() { return needed(); }
