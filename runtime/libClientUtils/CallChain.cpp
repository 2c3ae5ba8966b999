#include "runtime/libClientUtils/CallChain.h"

#include <atomic>

namespace zerva {

CallChain newCallChain() {
  static std::atomic<std::uint64_t> last{0};
  return {last.fetch_add(1, std::memory_order_relaxed) + 1, 0};
}

}  // namespace zerva
