#include "runtime/libClientUtils/Slab.h"

#include <new>
#include <type_traits>
#include <utility>

namespace zerva {

static_assert(std::is_trivially_destructible_v<Slab>, "it is used while the process ends");

namespace {

// So large that the C library gets it from the system, away from its heap, unless somebody freed
// as much at a time before. What nobody uses of it is never touched and takes no memory.
constexpr std::size_t kPieceSize = std::size_t{256} * 1024;

#ifdef __SANITIZE_ADDRESS__
// It tells who uses memory that was given back, unless that is used again.
constexpr bool kUsesAgain = false;
#else
constexpr bool kUsesAgain = true;
#endif

}  // namespace

void* Slab::take() {
  if (!kUsesAgain) return ::operator new(size_);
  const std::lock_guard lock(mutex_);
  if (free_ != nullptr) return std::exchange(free_, free_->next);
  if (unusedSize_ < size_) {
    void* const piece = ::operator new(kPieceSize, std::nothrow);
    // There may be room for one where there is none for many.
    if (piece == nullptr) return ::operator new(size_);
    unused_ = static_cast<char*>(piece);
    unusedSize_ = kPieceSize;
  }
  unusedSize_ -= size_;
  return std::exchange(unused_, unused_ + size_);
}

void Slab::give(void* memory) noexcept {
  if (!kUsesAgain) {
    ::operator delete(memory);
    return;
  }
  const std::lock_guard lock(mutex_);
  free_ = ::new (memory) Free{free_};
}

}  // namespace zerva
