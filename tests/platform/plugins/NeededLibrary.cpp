#include "framework/Export.h"

extern "C" ZERVA_EXPORT int needed() { return 1; }
