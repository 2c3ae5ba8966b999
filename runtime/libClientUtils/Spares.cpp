#include "runtime/libClientUtils/Spares.h"

#include <pthread.h>

#include <array>
#include <new>
#include <type_traits>
#include <utility>

namespace zerva {

static_assert(std::is_trivially_destructible_v<Spares>, "threads use it while the process ends");

/** What a thread keeps of a kind. */
struct Spares::Kept {
  Spare* first = nullptr;
  std::size_t count = 0;
  /** How many there may be: none as long as the end of the thread is not noted. */
  std::size_t most = 0;
  /** A row more, of as many as there may be; null for none. */
  Spare* row = nullptr;
  Spares* of = nullptr;
};

/** Calls `threadEnds` in each thread that notes it. */
class Spares::ThreadEnd {
 public:
  ThreadEnd() : made_(::pthread_key_create(&key_, [](void* /*value*/) { threadEnds(); }) == 0) {}

  /** @returns false when nobody will be called. */
  bool note() const { return made_ && ::pthread_setspecific(key_, this) == 0; }

 private:
  pthread_key_t key_ = 0;
  const bool made_;
};

Spares::Kept& Spares::keptByThisThread(SpareKind kind) {
  constexpr std::size_t kKinds = static_cast<std::size_t>(SpareKind::Unused) + 1;
  // Nothing has to be looked up for it: the library is there from the start.
  [[gnu::tls_model("initial-exec")]] constinit static thread_local std::array<Kept, kKinds> all{};
  return all[static_cast<std::size_t>(kind)];
}

void* Spares::take() {
  Kept& kept = keptByThisThread(kind_);
  if (kept.first == nullptr && !takeRow(kept)) return nullptr;
  --kept.count;
  return std::exchange(kept.first, kept.first->next);
}

void Spares::give(void* object) {
  Kept& kept = keptByThisThread(kind_);
  if (kept.count == kept.most && !makeRoom(kept)) {
    free_(object);
    return;
  }
  kept.first = ::new (object) Spare{kept.first};
  ++kept.count;
}

/** Gets a row for a thread that has none in use. @returns false when there is none. */
bool Spares::takeRow(Kept& kept) {
  if (kept.row != nullptr) {
    kept.first = std::exchange(kept.row, nullptr);
    kept.count = kept.most;
    return true;
  }
  if (count_.load(std::memory_order_relaxed) == 0) return false;
  if (kept.most == 0 && !makeRoom(kept)) return false;
  const std::lock_guard lock(mutex_);
  if (stored_ == nullptr) return false;
  kept.first = stored_;
  kept.count = stored_->inRow;
  stored_ = stored_->nextRow;
  count_.store(count_.load(std::memory_order_relaxed) - kept.count, std::memory_order_relaxed);
  return true;
}

/** Makes room for one more where the thread has as many as there may be. @returns false if not. */
bool Spares::makeRoom(Kept& kept) {
  if (kept.most == 0) {
    if (!noteThread()) return false;
    kept.of = this;
    kept.most = kMostInRow;
    return true;
  }
  if (kept.row != nullptr) store(kept.row, kept.most);
  kept.row = std::exchange(kept.first, nullptr);
  kept.count = 0;
  return true;
}

/** Puts a row into the store, or frees it. */
void Spares::store(Spare* first, std::size_t count) {
  {
    const std::lock_guard lock(mutex_);
    const std::size_t all = count_.load(std::memory_order_relaxed) + count;
    if (all <= kMostInStore) {
      first->nextRow = stored_;
      first->inRow = count;
      stored_ = first;
      count_.store(all, std::memory_order_relaxed);
      return;
    }
  }
  while (first != nullptr) free_(std::exchange(first, first->next));
}

void Spares::idle() {
  for (unsigned char kind = 0; kind <= static_cast<unsigned char>(SpareKind::Unused); ++kind) {
    Kept& kept = keptByThisThread(static_cast<SpareKind>(kind));
    if (kept.row != nullptr) kept.of->store(std::exchange(kept.row, nullptr), kept.most);
    if (kept.count <= kMostOfIdle) continue;
    kept.of->store(std::exchange(kept.first, nullptr), std::exchange(kept.count, 0));
  }
}

/** Sees to it that nothing is lost when the thread ends. @returns false when that cannot be. */
bool Spares::noteThread() {
  static const ThreadEnd end;
  return end.note();
}

void Spares::threadEnds() {
  for (unsigned char kind = 0; kind <= static_cast<unsigned char>(SpareKind::Unused); ++kind) {
    // One that still uses it while the thread ends is noted again.
    Kept kept = std::exchange(keptByThisThread(static_cast<SpareKind>(kind)), {});
    if (kept.row != nullptr) kept.of->store(kept.row, kept.most);
    if (kept.first != nullptr) kept.of->store(kept.first, kept.count);
  }
}

}  // namespace zerva
