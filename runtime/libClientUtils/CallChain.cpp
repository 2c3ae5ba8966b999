#include "runtime/libClientUtils/CallChain.h"

#include <atomic>
#include <utility>

namespace zerva {

/** One message, and the one that waits for it. */
struct CallChain::Link {
  std::shared_ptr<const Link> waiting;
  unsigned length;
};

CallChain::CallChain(std::uint64_t id, std::shared_ptr<const Link> last)
    : id_(id), last_(std::move(last)) {}

CallChain CallChain::begin() {
  static std::atomic<std::uint64_t> last{0};
  return {last.fetch_add(1, std::memory_order_relaxed) + 1,
          std::make_shared<const Link>(Link{nullptr, 1})};
}

CallChain CallChain::ofRequest() const {
  return id_ == 0 ? begin()
                  : CallChain(id_, std::make_shared<const Link>(Link{last_, length() + 1}));
}

CallChain CallChain::ofMessage() const {
  return id_ == 0 ? begin() : CallChain(id_, std::make_shared<const Link>(Link{nullptr, 1}));
}

bool CallChain::isAwaitedBy(const CallChain& other) const {
  if (last_ == nullptr) {
    return false;
  }
  for (const Link* link = last_->waiting.get(); link != nullptr; link = link->waiting.get()) {
    if (link == other.last_.get()) {
      return true;
    }
  }
  return false;
}

unsigned CallChain::length() const { return last_ != nullptr ? last_->length : 0; }

}  // namespace zerva
