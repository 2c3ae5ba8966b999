#include "framework/ZervaVersion.h"

std::string ZervaVersion() { return ZERVA_VERSION_TEXT; }
