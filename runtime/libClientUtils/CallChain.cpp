#include "runtime/libClientUtils/CallChain.h"

#include <atomic>
#include <random>
#include <utility>

namespace zerva {

namespace {

/**
 * Chains and messages are known in other processes too, so each process counts from another place;
 * far enough below the end that none gets there.
 *
 * @returns the first of so many new ids.
 */
std::uint64_t newIds(unsigned count) {
  static std::atomic<std::uint64_t> last{[] {
    std::random_device random;
    constexpr unsigned kHalf = 32;
    return ((std::uint64_t{random()} << kHalf) | random()) >> 1U;
  }()};
  return last.fetch_add(count, std::memory_order_relaxed) + 1;
}

/** @returns as `newIds`; a thread gets many at a time, since others count there too. */
std::uint64_t ownIds(unsigned count) {
  struct Range {
    std::uint64_t last;
    unsigned left;
  };
  constexpr unsigned kAtATime = 1024;
  // What a thread leaves is not missed.
  [[gnu::tls_model("initial-exec")]] constinit static thread_local Range range{};
  if (range.left < count) {
    range = {newIds(kAtATime) - 1, kAtATime};
  }
  range.left -= count;
  range.last += count;
  return range.last - count + 1;
}

}  // namespace

/** A message that waits for another one, and the one that waits for it. */
struct CallChain::Link {
  std::uint64_t message;
  std::shared_ptr<const Link> waiting;
};

CallChain::CallChain(std::uint64_t id, std::uint64_t message, unsigned length,
                     std::shared_ptr<const Link> waiting)
    : id_(id), message_(message), length_(length), waiting_(std::move(waiting)) {}

CallChain CallChain::begin() {
  const std::uint64_t id = ownIds(2);
  return {id, id + 1, 1, nullptr};
}

CallChain CallChain::ofRequest() const {
  return id_ == 0 ? begin()
                  : CallChain(id_, ownIds(1), length_ + 1,
                              std::make_shared<const Link>(Link{message_, waiting_}));
}

CallChain CallChain::ofMessage() const {
  return id_ == 0 ? begin() : CallChain(id_, ownIds(1), 1, nullptr);
}

bool CallChain::isAwaitedBy(const CallChain& other) const {
  if (other.message_ == 0) {
    return false;
  }
  for (const Link* link = waiting_.get(); link != nullptr; link = link->waiting.get()) {
    // By their ids: what came back from another process is the same message, but another object.
    if (link->message == other.message_) {
      return true;
    }
  }
  return false;
}

CallChain CallChain::ofOtherProcess(std::uint64_t id, const std::vector<std::uint64_t>& links) {
  CallChain chain;
  chain.id_ = id;
  for (const std::uint64_t link : links) {
    if (chain.length_ > 0) {
      chain.waiting_ =
          std::make_shared<const Link>(Link{chain.message_, std::move(chain.waiting_)});
    }
    chain.message_ = link;
    ++chain.length_;
  }
  return chain;
}

std::vector<std::uint64_t> CallChain::links() const {
  std::vector<std::uint64_t> links(length_);
  if (length_ == 0) return links;
  std::size_t place = length_ - 1;
  links[place] = message_;
  for (const Link* link = waiting_.get(); link != nullptr; link = link->waiting.get()) {
    links[--place] = link->message;
  }
  return links;
}

}  // namespace zerva
