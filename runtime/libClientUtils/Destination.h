#pragma once

#include <memory>
#include <string>

#include "framework/Export.h"
#include "runtime/libClientUtils/Envelope.h"

namespace zerva {

/** Where messages to a name can be handed: a mailbox of this process or a way to another one. */
class ZERVA_EXPORT Destination {
 public:
  /** @returns whether it is of this process, so that no message needs the name to get there. */
  virtual bool isHere() const { return false; }

  /** @returns as `CommsChannel::whoServes`. */
  virtual std::string server() const = 0;

  /**
   * Takes a message. Does not wait for anybody and calls no service.
   *
   * @param envelope moved from only when it is taken. When this message is not taken, although
   *     others may be, its `refusal` says why.
   * @returns false when it is not taken.
   */
  virtual bool deliver(Envelope& envelope) = 0;

  /** @returns where its answers come from; null when that is this process, or not known. */
  virtual std::shared_ptr<Input> input() const = 0;

  /**
   * @returns whether the calling thread must not wait for an answer, since it is the one that has
   *     yet to start whoever would give it.
   */
  virtual bool waitsForCaller() const = 0;

  /** @returns whether `waitsForCaller` says no from here on, to whomever. */
  virtual bool isStarted() const { return false; }

 protected:
  ~Destination() = default;
};

}  // namespace zerva
