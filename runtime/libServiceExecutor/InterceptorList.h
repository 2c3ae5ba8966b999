#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace zerva {

/**
 * The interceptors of a dispatcher. They are told every message and change seldom, so who tells
 * them takes no lock: each change makes a new list, and an old one is freed when nobody reads.
 */
template <typename Interceptor>
class InterceptorList {
 public:
  InterceptorList() = default;
  InterceptorList(const InterceptorList&) = delete;
  InterceptorList& operator=(const InterceptorList&) = delete;

  void add(Interceptor* interceptor) {
    change([interceptor](List& all) { all.push_back(interceptor); });
  }

  void remove(Interceptor* interceptor) {
    change([interceptor](List& all) { std::erase(all, interceptor); });
  }

  bool isEmpty() const { return current_ == nullptr; }

  /** Calls a function for each of those that there are now, in order. */
  template <typename Tell>
  void forEach(const Tell& tell) const {
    const Reading reading(readers_);
    if (const List* const all = current_) {
      for (Interceptor* const interceptor : *all) {
        tell(*interceptor);
      }
    }
  }

 private:
  using List = std::vector<Interceptor*>;

  class Reading {
   public:
    explicit Reading(std::atomic<unsigned>& readers) : readers_(readers) { ++readers_; }
    ~Reading() { --readers_; }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

   private:
    std::atomic<unsigned>& readers_;
  };

  template <typename Change>
  void change(const Change& change) {
    const std::lock_guard lock(mutex_);
    auto all = lists_.empty() ? std::make_unique<List>() : std::make_unique<List>(*lists_.back());
    change(*all);
    lists_.push_back(std::move(all));
    current_ = lists_.back()->empty() ? nullptr : lists_.back().get();
    // Whoever begins to read from here on finds the new one.
    if (readers_ == 0) {
      lists_.erase(lists_.begin(), lists_.end() - 1);
    }
  }

  mutable std::atomic<unsigned> readers_{0};
  std::atomic<const List*> current_{nullptr};  // null for an empty one
  std::mutex mutex_;
  // Guarded by mutex_; the newest is the last.
  std::vector<std::unique_ptr<const List>> lists_;
};

}  // namespace zerva
