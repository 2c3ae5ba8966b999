#include "runtime/libClientUtils/Waiting.h"

#include <mutex>
#include <type_traits>
#include <utility>

namespace zerva {
namespace {

/** It needs no destructor, since threads may still wait while the process ends. */
struct Waits {
  std::mutex mutex;
  // Guarded by mutex.
  Waiting* first = nullptr;
  Waiting* last = nullptr;
};
static_assert(std::is_trivially_destructible_v<Waits>);

constinit Waits waits;

/** Guarded by the mutex of the waits. Never destroyed, for the same reason. */
std::function<std::string()>& shutdownNoted() {
  static auto* const noted = new std::function<std::string()>;
  return *noted;
}

}  // namespace

Waiting::Waiting(std::string what) : phrase_(std::move(what)), what_(phrase_.c_str()) { begin(); }

Waiting::Waiting(const char* what, std::shared_ptr<const Description> whose)
    : what_(what), whose_(std::move(whose)) {
  begin();
}

void Waiting::begin() {
  const std::lock_guard lock(waits.mutex);
  before_ = waits.last;
  (before_ != nullptr ? before_->next_ : waits.first) = this;
  waits.last = this;
}

Waiting::~Waiting() {
  const std::lock_guard lock(waits.mutex);
  (before_ != nullptr ? before_->next_ : waits.first) = next_;
  (next_ != nullptr ? next_->before_ : waits.last) = before_;
}

std::string Waiting::text() const { return whose_ != nullptr ? what_ + whose_->text() : what_; }

std::vector<std::string> Waiting::all() {
  const std::lock_guard lock(waits.mutex);
  std::vector<std::string> all;
  for (const Waiting* wait = waits.first; wait != nullptr; wait = wait->next_) {
    all.push_back(wait->text());
  }
  return all;
}

void Waiting::noteShutdown(std::function<std::string()> executor) {
  const std::lock_guard lock(waits.mutex);
  shutdownNoted().swap(executor);
}

std::string Waiting::lastShutdown() {
  const std::lock_guard lock(waits.mutex);
  return shutdownNoted() ? shutdownNoted()() : "";
}

}  // namespace zerva
