#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

namespace zerva {

/**
 * Tells, of a walk over a map from its begin, which entries are the first to have their object: a
 * service stands under each of its names, an invoker under each of its protocols, and is deleted
 * once. Never throws: what is taken down is not left half way for want of memory.
 */
template <typename Map, typename Object>
class OnceEach {
 public:
  /**
   * @param map stays as it is during the walk.
   * @param object where an entry has it.
   */
  OnceEach(const Map& map, Object* Map::mapped_type::*object) noexcept
      : map_(map), object_(object), seen_(new (std::nothrow) const Object*[last_ + 1]()) {}

  /** @returns whether the entry's object is not null and no entry before has it. */
  bool isNew(typename Map::const_iterator entry) noexcept {
    const Object* const object = entry->second.*object_;
    if (object == nullptr) {
      return false;
    }
    return seen_ != nullptr ? remember(object) : !isBefore(entry, object);
  }

 private:
  /** @returns whether it was not remembered already. */
  bool remember(const Object* object) noexcept {
    // Objects lie some 16 bytes apart. Every second place stays free, so the next one is near.
    std::size_t place = reinterpret_cast<std::uintptr_t>(object) / 16;
    while (seen_[place & last_] != nullptr && seen_[place & last_] != object) {
      ++place;
    }
    const bool isNew = seen_[place & last_] == nullptr;
    seen_[place & last_] = object;
    return isNew;
  }

  /** Needs no memory, but takes long in a large map. */
  bool isBefore(typename Map::const_iterator entry, const Object* object) const noexcept {
    return std::any_of(map_.begin(), entry,
                       [&](const auto& before) { return before.second.*object_ == object; });
  }

  const Map& map_;
  Object* Map::mapped_type::*const object_;
  const std::size_t last_ = std::bit_ceil(2 * map_.size() + 1) - 1;
  /** By their addresses; null when there was no memory for it. */
  const std::unique_ptr<const Object*[]> seen_;
};

}  // namespace zerva
