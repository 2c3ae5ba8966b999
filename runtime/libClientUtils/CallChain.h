#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "framework/Export.h"

namespace zerva {

/**
 * Ties together a message and all that is sent because of it. It travels with every message, so
 * that a thread that waits can tell the requests that it waits for itself from those of others.
 */
class ZERVA_EXPORT CallChain {
 public:
  /** The chain of whoever has none. */
  CallChain() = default;

  /** @returns a chain that nothing else belongs to. Any thread. */
  static CallChain begin();

  /** @returns the chain of a request that is made, and waited for, on behalf of this one. */
  CallChain ofRequest() const;

  /** @returns the chain of a message that is sent on behalf of this one and that nobody waits for.
   */
  CallChain ofMessage() const;

  /**
   * Makes a chain again of what another process told of it.
   *
   * @param id of the chain; not 0.
   * @param links as `links` gave them.
   */
  static CallChain ofOtherProcess(std::uint64_t id, const std::vector<std::uint64_t>& links);

  /** @returns the same for no other chain, in no process; 0 for none. */
  std::uint64_t id() const { return id_; }

  /** @returns an id for each message that waits, the one that waits longest first, and for the
   * newest message itself; the same for no other message, in no process. */
  std::vector<std::uint64_t> links() const;

  /** @returns whether there is one. */
  explicit operator bool() const { return id_ != 0; }

  /** @returns whether both belong to the same chain. */
  bool sameAs(const CallChain& other) const { return id_ == other.id_ && id_ != 0; }

  /** @returns whether this is a request that the other waits for, directly or not. */
  bool isAwaitedBy(const CallChain& other) const;

  /** @returns how many requests wait for one another here. */
  unsigned length() const { return length_; }

 private:
  struct Link;

  CallChain(std::uint64_t id, std::uint64_t message, unsigned length,
            std::shared_ptr<const Link> waiting);

  std::uint64_t id_ = 0;
  std::uint64_t message_ = 0;  // the newest one; 0 for none
  unsigned length_ = 0;
  std::shared_ptr<const Link> waiting_;  // those that wait for it; most messages have none
};

/** Most requests of one chain that may wait for one another; more is taken for a runaway. */
inline constexpr unsigned kMaximumChainLength = 256;

/** Most requests of one chain that one thread serves inside each other: they share its stack. */
inline constexpr unsigned kMaximumNestingOnOneThread = 16;

}  // namespace zerva
