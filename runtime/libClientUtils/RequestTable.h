#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <utility>

namespace zerva {

/**
 * What is known of requests, by their ids. Who asks usually asks for one thing at a time, so the
 * first place lies in the table itself: a place that another thread gives back takes no memory, and
 * no way to it.
 *
 * A request that is taken out is told to `end()`; its place is the next one's, as it is then.
 */
template <typename Request>
class RequestTable {
 public:
  /** @returns null when there is none with this id. */
  Request* find(std::uint32_t id) {
    if (firstIsTaken_ && firstId_ == id) return &first_;
    if (others_.empty()) return nullptr;
    const auto found = others_.find(id);
    return found != others_.end() ? &found->second : nullptr;
  }
  const Request* find(std::uint32_t id) const { return const_cast<RequestTable*>(this)->find(id); }

  /** @returns the request with this id, and whether it is new; a new one is as its place was. */
  std::pair<Request*, bool> place(std::uint32_t id) {
    if (Request* const known = find(id)) return {known, false};
    if (firstIsTaken_) return {&placeOther(id), true};
    firstIsTaken_ = true;
    firstId_ = id;
    return {&first_, true};
  }

  /** @param id of one that is there. */
  void remove(std::uint32_t id) {
    if (firstIsTaken_ && firstId_ == id) return removeFirst();
    removeOther(others_.find(id));
  }

  /** Takes out those that `isOver` says so of, which gets each request. */
  template <typename IsOver>
  void removeIf(const IsOver& isOver) {
    if (firstIsTaken_ && isOver(first_)) removeFirst();
    for (auto it = others_.begin(); it != others_.end();) {
      const auto other = it++;
      if (isOver(other->second)) removeOther(other);
    }
  }

  std::size_t size() const { return others_.size() + (firstIsTaken_ ? 1 : 0); }

 private:
  using Others = std::unordered_map<std::uint32_t, Request>;

  Request& placeOther(std::uint32_t id) {
    if (spare_.empty()) return others_[id];
    spare_.key() = id;
    return others_.insert(std::move(spare_)).position->second;
  }

  void removeFirst() {
    firstIsTaken_ = false;
    first_.end();
  }

  void removeOther(typename Others::iterator which) {
    which->second.end();
    if (spare_.empty()) {
      spare_ = others_.extract(which);
    } else {
      others_.erase(which);
    }
  }

  bool firstIsTaken_ = false;
  std::uint32_t firstId_ = 0;
  Request first_;
  Others others_;
  // The place of one that ended, for the next one: it would be freed by another thread than the one
  // that gets the next.
  typename Others::node_type spare_;
};

}  // namespace zerva
