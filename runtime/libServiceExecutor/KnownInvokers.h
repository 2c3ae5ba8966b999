#pragma once

#include <atomic>
#include <memory>
#include <new>

#include "runtime/libClientUtils/Envelope.h"

class Invoker;
class ProtocolAdapter;
class TargetInvoker;

namespace zerva {

/** With what the calls of an interface over a protocol are made. */
struct KnownInvoker {
  ProtocolAdapter* adapter = nullptr;
  Invoker* invoker = nullptr;
  TargetInvoker* targeted = nullptr;  // the same invoker, when it found the service's target
  void* target = nullptr;
};

/**
 * With what an executor has made calls of its service before. What the context finds lives as long
 * as the executor, so each pair of interface and protocol is looked up once, and not for each call.
 */
class KnownInvokers {
 public:
  KnownInvokers() = default;
  ~KnownInvokers() {
    for (const Entry* entry = newest_.load(); entry != nullptr;) {
      const std::unique_ptr<const Entry> ended(entry);
      entry = ended->next;
    }
  }
  KnownInvokers(const KnownInvokers&) = delete;
  KnownInvokers& operator=(const KnownInvokers&) = delete;

  /**
   * Any thread; takes no lock.
   *
   * @param callee not null.
   * @returns null for a pair that was not added.
   */
  const KnownInvoker* find(const Callee& callee) const {
    const Entry* const entry = entryOf(callee, newest_.load(std::memory_order_acquire));
    return entry != nullptr ? &entry->known : nullptr;
  }

  /**
   * Any thread; takes no lock. What is known of the pair already stays. Without memory nothing is
   * added.
   *
   * @param callee not null.
   */
  void add(const Callee& callee, const KnownInvoker& known) {
    std::unique_ptr<Entry> entry(new (std::nothrow) Entry{callee, known, nullptr});
    if (entry == nullptr) return;
    entry->next = newest_.load(std::memory_order_acquire);
    do {
      if (entryOf(callee, entry->next) != nullptr) return;
    } while (!newest_.compare_exchange_weak(entry->next, entry.get(), std::memory_order_acq_rel,
                                            std::memory_order_acquire));
    static_cast<void>(entry.release());
  }

 private:
  /** Stays where it is until the end. */
  struct Entry {
    const Callee callee;
    const KnownInvoker known;
    const Entry* next;
  };

  static const Entry* entryOf(const Callee& callee, const Entry* first) {
    for (const Entry* entry = first; entry != nullptr; entry = entry->next) {
      // The same object, when it is the same proxy that calls.
      if (entry->callee == callee || (entry->callee->interface == callee->interface &&
                                      entry->callee->protocol == callee->protocol)) {
        return entry;
      }
    }
    return nullptr;
  }

  std::atomic<const Entry*> newest_{nullptr};
};

}  // namespace zerva
