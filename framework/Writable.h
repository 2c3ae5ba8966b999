#pragma once

#include "framework/Export.h"

class ValueWriter;

/** Something that can be written as values: the arguments of a call, or its result. */
class ZERVA_EXPORT Writable {
 public:
  /** Writes itself, one value after the other. @param writer where to; not kept. */
  virtual void write(ValueWriter& writer) const = 0;

 protected:
  ~Writable() = default;
};
