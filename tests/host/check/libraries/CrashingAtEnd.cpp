// Can be opened, and crashes when it is closed.

#include <cstdlib>

namespace {
__attribute__((destructor)) void crash() { std::abort(); }
}  // namespace

extern "C" __attribute__((visibility("default"))) void* createCrashingAtEnd() { return nullptr; }
