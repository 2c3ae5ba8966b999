#include "tests/support/Patience.h"

namespace zerva {

std::chrono::milliseconds patience() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  return std::chrono::seconds{60};
#else
  return std::chrono::seconds{30};
#endif
}

}  // namespace zerva
