#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "framework/Export.h"

/**
 * Takes the values of a call one after the other, in the order in which `ValueReader` gives them
 * back. What they look like as bytes is the protocol's business. Used by one thread.
 */
class ZERVA_EXPORT ValueWriter {
 public:
  /** Writes the value of something that has none: the result of a method that returns nothing. */
  virtual void writeNothing() = 0;

  /** Writes a truth value or a whole number. */
  virtual void writeBool(bool value) = 0;
  virtual void writeInteger(std::int64_t value) = 0;
  virtual void writeUnsigned(std::uint64_t value) = 0;

  /** Writes a floating-point number; it is read back unchanged, infinities included. */
  virtual void writeReal(double value) = 0;

  /** Writes a text or bytes, zeros included. */
  virtual void writeText(const std::string& value) = 0;

  /**
   * Begins a list of values of any kinds, lists included.
   *
   * @param size how many values follow before `endList`.
   */
  virtual void beginList(std::size_t size) = 0;

  /** Ends the list that was begun last; all of its values have been written. */
  virtual void endList() = 0;

 protected:
  ~ValueWriter() = default;
};
