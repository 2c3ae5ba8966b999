#include "runtime/libClientUtils/Texts.h"

#include <array>
#include <cstddef>

#include "runtime/libClientUtils/Spares.h"

namespace zerva {

namespace {

// Longer ones are seldom so many that they matter, and would be much memory for short ones.
constexpr std::size_t kLongestKept = 128;

// What a shared pointer notes beside it is no larger than this.
constexpr std::size_t kBlockSize = 6 * sizeof(void*);

struct Text {
  Spare spare;
  std::string bytes;
  alignas(void*) std::array<std::byte, kBlockSize> block;
};

constinit Spares spares(SpareKind::Text, [](void* text) { delete static_cast<Text*>(text); });

/** Has a shared pointer put what it notes beside the text, which is given back together with it. */
template <typename T>
struct BesideText {
  using value_type = T;

  explicit BesideText(Text* ofText) : text(ofText) {}
  template <typename Other>
  explicit BesideText(const BesideText<Other>& other) : text(other.text) {}

  T* allocate(std::size_t /*one*/) {
    static_assert(sizeof(T) <= kBlockSize);
    static_assert(alignof(T) <= alignof(void*));
    return reinterpret_cast<T*>(text->block.data());
  }

  void deallocate(T* /*block*/, std::size_t /*one*/) {
    if (text->bytes.capacity() > kLongestKept) {
      delete text;
    } else {
      spares.give(text);
    }
  }

  template <typename Other>
  bool operator==(const BesideText<Other>& other) const {
    return text == other.text;
  }

  Text* text;
};

}  // namespace

std::shared_ptr<std::string> newText() {
  auto* text = static_cast<Text*>(spares.take());
  if (text == nullptr) {
    text = new Text;
  } else {
    text->bytes.clear();
  }
  // It is no object of its own, so there is nothing else to delete.
  return {&text->bytes, [](std::string* /*bytes*/) {}, BesideText<Text>(text)};
}

}  // namespace zerva
