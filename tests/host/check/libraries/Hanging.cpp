// Whoever opens it does not come back.

#include <unistd.h>

namespace {
__attribute__((constructor)) void hang() {
  for (;;) pause();
}
}  // namespace

extern "C" __attribute__((visibility("default"))) void* createHanging() { return nullptr; }
