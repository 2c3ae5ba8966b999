#pragma once

#include "framework/Export.h"

namespace zerva {

/**
 * Where messages come from that arrive outside of any thread of the process. Somebody always looks
 * after it; a thread that waits for something that comes this way may read it itself instead, so
 * that nobody else has to be woken to hand it on. One thread at a time does.
 */
class ZERVA_EXPORT Input {
 public:
  enum class Read {
    /** There is nothing now. */
    Nothing,
    /** Something, but nothing whole. */
    Part,
    /** Messages, which have been handed to whom they are for. */
    Messages,
    /** It has ended or somebody else has to see to it: it is not to be read any more. */
    Ended
  };

  /**
   * Makes the calling thread the one that reads, until `endReading`.
   *
   * @returns false when it cannot be, since another one reads, or nothing comes any more.
   */
  virtual bool beginReading() = 0;

  /**
   * Takes what has arrived, as far as it fits, and hands it on; does not wait. Between
   * `beginReading` and `endReading`. What fails is told to whoever looks after it.
   */
  virtual Read read() = 0;

  /** Waits with `poll` on it are over; whoever looks after it does so again. */
  virtual void endReading() = 0;

  /** @returns what becomes readable when something arrives; valid until `endReading`. */
  virtual int descriptor() const = 0;

  /** @returns what `WakeLine::wake` takes to end such a wait; valid until `endReading`. */
  virtual int wakeLine() const = 0;

 protected:
  ~Input() = default;
};

}  // namespace zerva
