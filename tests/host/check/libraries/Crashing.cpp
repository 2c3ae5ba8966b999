// Crashes as soon as it is opened.

#include <cstdlib>

namespace {
__attribute__((constructor)) void crash() { std::abort(); }
}  // namespace

extern "C" __attribute__((visibility("default"))) void* createCrashing() { return nullptr; }
