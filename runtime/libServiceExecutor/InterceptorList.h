#pragma once

#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace zerva {

/**
 * The interceptors of a dispatcher. Reading takes a snapshot, so that no lock is held while an
 * interceptor is called.
 */
template <typename Interceptor>
class InterceptorList {
 public:
  using Snapshot = std::shared_ptr<const std::vector<Interceptor*>>;

  void add(Interceptor* interceptor) {
    const std::lock_guard lock(mutex_);
    auto changed = *all_;
    changed.push_back(interceptor);
    replaceWith(std::move(changed));
  }

  void remove(Interceptor* interceptor) {
    const std::lock_guard lock(mutex_);
    auto changed = *all_;
    changed.erase(std::remove(changed.begin(), changed.end(), interceptor), changed.end());
    replaceWith(std::move(changed));
  }

  bool isEmpty() const { return empty_.load(std::memory_order_acquire); }

  Snapshot all() const {
    const std::lock_guard lock(mutex_);
    return all_;
  }

 private:
  /** Under the lock. */
  void replaceWith(std::vector<Interceptor*> changed) {
    all_ = std::make_shared<const std::vector<Interceptor*>>(std::move(changed));
    empty_.store(all_->empty(), std::memory_order_release);
  }

  std::atomic<bool> empty_{true};
  mutable std::mutex mutex_;
  Snapshot all_ = std::make_shared<const std::vector<Interceptor*>>();  // guarded by mutex_
};

}  // namespace zerva
