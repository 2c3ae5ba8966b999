#include "runtime/libClientUtils/bus/SpareText.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace zerva {

std::shared_ptr<std::string> SpareText::make(const std::shared_ptr<SpareText>& spare,
                                             std::size_t size) {
  auto text = std::make_unique<std::string>(spare->take(size));
  // Only what the former text was shorter by is filled, which is nothing where all are alike.
  text->resize(size);
  return {text.release(), [spare](std::string* unused) {
            spare->giveBack(*unused);
            delete unused;
          }};
}

/** @returns one that needs no more memory for so many bytes; empty when there is none. */
std::string SpareText::take(std::size_t size) {
  const std::lock_guard lock(mutex_);
  const auto found = std::find_if(kept_.begin(), kept_.end(),
                                  [&](const auto& text) { return text.capacity() >= size; });
  return found != kept_.end() ? std::exchange(*found, {}) : std::string();
}

void SpareText::giveBack(std::string& text) noexcept {
  const std::lock_guard lock(mutex_);
  const auto least = std::min_element(kept_.begin(), kept_.end(), [](const auto& a, const auto& b) {
    return a.capacity() < b.capacity();
  });
  if (text.capacity() > least->capacity() && text.capacity() <= kLongest &&
      keptLocked() - least->capacity() + text.capacity() <= kMost) {
    least->swap(text);
  }
}

std::size_t SpareText::kept() const {
  const std::lock_guard lock(mutex_);
  return keptLocked();
}

std::size_t SpareText::keptLocked() const {
  return std::accumulate(kept_.begin(), kept_.end(), std::size_t{0},
                         [](std::size_t sum, const auto& text) { return sum + text.capacity(); });
}

}  // namespace zerva
