#pragma once

#include <utility>

#include "framework/Readable.h"
#include "framework/ValueReader.h"
#include "framework/ValueWriter.h"
#include "framework/Writable.h"
#include "rmi/Values.h"

/** What travels with a call: its arguments, as a tuple, or its result. */
namespace zerva::rmi {

template <typename T>
struct Sent final : Writable {
  explicit Sent(T what) : value(std::move(what)) {}
  void write(ValueWriter& writer) const override { rmi::write(writer, value); }
  T value;
};

template <>
struct Sent<void> final : Writable {
  void write(ValueWriter& writer) const override { writer.writeNothing(); }
};

template <typename T>
struct Received final : Readable {
  void read(ValueReader& reader) override { value = rmi::read<T>(reader); }
  T value{};
};

template <>
struct Received<void> final : Readable {
  void read(ValueReader& reader) override { reader.readNothing(); }
};

}  // namespace zerva::rmi
