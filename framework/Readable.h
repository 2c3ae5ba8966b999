#pragma once

#include "framework/Export.h"

class ValueReader;

/** Something that can be read from values: the arguments of a call, or its result. */
class ZERVA_EXPORT Readable {
 public:
  /** @throws DecodeException when the values are not those that are expected. */
  virtual void read(ValueReader& reader) = 0;

 protected:
  ~Readable() = default;
};
