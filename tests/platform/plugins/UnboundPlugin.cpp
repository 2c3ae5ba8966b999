#include "framework/Export.h"

extern "C" int functionThatNothingHas();

extern "C" ZERVA_EXPORT int callIt() { return functionThatNothingHas(); }
