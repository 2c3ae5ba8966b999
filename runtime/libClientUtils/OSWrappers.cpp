#include "framework/OSWrappers.h"

#include <unistd.h>

int OSWrappers::curID() { return ::gettid(); }
