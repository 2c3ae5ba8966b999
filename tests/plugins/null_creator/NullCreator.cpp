// A creator that makes nothing.

#include "framework/Service.h"

extern "C" ZERVA_EXPORT Service* createNull() { return nullptr; }
