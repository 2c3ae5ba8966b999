#include "runtime/libClientUtils/CallChain.h"

#include <atomic>
#include <random>
#include <utility>

namespace zerva {

namespace {

/**
 * Chains and messages are known in other processes too, so each process counts from another place;
 * far enough below the end that none gets there.
 */
std::uint64_t newId() {
  static std::atomic<std::uint64_t> last{[] {
    std::random_device random;
    constexpr unsigned kHalf = 32;
    return ((std::uint64_t{random()} << kHalf) | random()) >> 1U;
  }()};
  return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

}  // namespace

/** One message, and the one that waits for it. */
struct CallChain::Link {
  std::uint64_t id;
  std::shared_ptr<const Link> waiting;
  unsigned length;
};

CallChain::CallChain(std::uint64_t id, std::shared_ptr<const Link> last)
    : id_(id), last_(std::move(last)) {}

CallChain CallChain::begin() {
  return {newId(), std::make_shared<const Link>(Link{newId(), nullptr, 1})};
}

CallChain CallChain::ofRequest() const {
  return id_ == 0
             ? begin()
             : CallChain(id_, std::make_shared<const Link>(Link{newId(), last_, length() + 1}));
}

CallChain CallChain::ofMessage() const {
  return id_ == 0 ? begin()
                  : CallChain(id_, std::make_shared<const Link>(Link{newId(), nullptr, 1}));
}

bool CallChain::isAwaitedBy(const CallChain& other) const {
  if (last_ == nullptr) {
    return false;
  }
  for (const Link* link = last_->waiting.get(); link != nullptr; link = link->waiting.get()) {
    // By their ids: what came back from another process is the same message, but another object.
    if (other.last_ != nullptr && link->id == other.last_->id) {
      return true;
    }
  }
  return false;
}

CallChain CallChain::ofOtherProcess(std::uint64_t id, const std::vector<std::uint64_t>& links) {
  std::shared_ptr<const Link> last;
  unsigned length = 0;
  for (const std::uint64_t link : links) {
    last = std::make_shared<const Link>(Link{link, std::move(last), ++length});
  }
  return {id, std::move(last)};
}

std::vector<std::uint64_t> CallChain::links() const {
  std::vector<std::uint64_t> links(length());
  std::size_t place = links.size();
  for (const Link* link = last_.get(); link != nullptr; link = link->waiting.get()) {
    links[--place] = link->id;
  }
  return links;
}

unsigned CallChain::length() const { return last_ != nullptr ? last_->length : 0; }

}  // namespace zerva
