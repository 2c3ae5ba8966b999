#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "framework/Export.h"

/**
 * Gives the values of a call back in the order in which they were written. What it reads came from
 * outside and is not trusted: each operation throws `DecodeException` when the next value is of
 * another kind, out of range, or not there. Used by one thread.
 */
class ZERVA_EXPORT ValueReader {
 public:
  /** Reads what stands where there is no value: the result of a method that returns nothing. */
  virtual void readNothing() = 0;

  /** @returns the next value, a truth value. */
  virtual bool readBool() = 0;

  /** Also reads what was written unsigned, as long as it fits. */
  virtual std::int64_t readInteger() = 0;

  /** Also reads what was written signed, as long as it is not negative. */
  virtual std::uint64_t readUnsigned() = 0;

  /** @returns the next value, a floating-point number, as it was written. */
  virtual double readReal() = 0;

  /** @returns the next value, a text or bytes. */
  virtual std::string readText() = 0;

  /**
   * Enters a list.
   *
   * @returns how many values it holds, which is never more than there are bytes left: a list may be
   *     made that large without fear.
   */
  virtual std::size_t beginList() = 0;

  /** Leaves the list that was entered last; all of its values have been read. */
  virtual void endList() = 0;

 protected:
  ~ValueReader() = default;
};
