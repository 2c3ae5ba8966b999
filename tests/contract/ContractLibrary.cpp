#include "framework/Export.h"

extern "C" ZERVA_EXPORT int contractAnswer();

extern "C" int contractAnswer() { return 42; }
