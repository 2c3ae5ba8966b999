#pragma once

#include <cstdint>
#include <vector>

#include "runtime/libClientUtils/Envelope.h"

class Invoker;
class ProtocolAdapter;
class TargetInvoker;

namespace zerva {

/** With what the calls of an interface over a protocol are made; nothing until it is found. */
struct KnownInvoker {
  ProtocolAdapter* adapter = nullptr;
  Invoker* invoker = nullptr;
  TargetInvoker* targeted = nullptr;  // the same invoker, when it found the service's target
  void* target = nullptr;
};

/**
 * With what an executor has made calls of its service before, so that each pair of interface and
 * protocol is looked up once, and not for each call; and again when an invoker or an adapter has
 * ended since. Whoever uses it keeps threads from each other.
 */
class KnownInvokers {
 public:
  /**
   * @param callee not null.
   * @param age of look-ups now.
   * @returns what is known of the pair; nothing where that is out of date.
   */
  KnownInvoker find(const Callee& callee, std::uint32_t age) const {
    for (const Entry& entry : entries_) {
      if (isOf(entry, callee)) return entry.age == age ? entry.known : KnownInvoker();
    }
    return {};
  }

  /**
   * @param callee not null.
   * @param age that look-ups had before it was found.
   */
  void add(const Callee& callee, std::uint32_t age, const KnownInvoker& known) {
    for (Entry& entry : entries_) {
      if (!isOf(entry, callee)) continue;
      // Whoever calls now calls again sooner than who called before.
      entry = {callee, age, known};
      return;
    }
    entries_.push_back({callee, age, known});
  }

 private:
  struct Entry {
    Callee callee;
    std::uint32_t age;
    KnownInvoker known;
  };

  static bool isOf(const Entry& entry, const Callee& callee) {
    // The same object, when it is the same proxy that calls.
    return entry.callee == callee || (entry.callee->interface == callee->interface &&
                                      entry.callee->protocol == callee->protocol);
  }

  std::vector<Entry> entries_;
};

}  // namespace zerva
