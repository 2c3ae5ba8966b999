#pragma once

#include <functional>
#include <string>

#include "framework/ProtocolAdapter.h"
#include "framework/Readable.h"
#include "framework/ValueReader.h"
#include "framework/ValueWriter.h"
#include "framework/Writable.h"

namespace zerva {

/** Writes what a test says. */
struct Writing final : Writable {
  explicit Writing(std::function<void(ValueWriter&)> what) : body(std::move(what)) {}
  void write(ValueWriter& writer) const override { body(writer); }
  std::function<void(ValueWriter&)> body;
};

/** Reads what a test says. */
struct Reading final : Readable {
  explicit Reading(std::function<void(ValueReader&)> what) : body(std::move(what)) {}
  void read(ValueReader& reader) override { body(reader); }
  std::function<void(ValueReader&)> body;
};

/** @returns a reply as a protocol writes it. */
inline std::string written(ProtocolAdapter& adapter, std::function<void(ValueWriter&)> what) {
  std::string reply;
  adapter.writeReply(Writing(std::move(what)), reply);
  return reply;
}

/** Reads a reply of a protocol. */
inline void readBack(ProtocolAdapter& adapter, const std::string& reply,
                     std::function<void(ValueReader&)> what) {
  Reading reading(std::move(what));
  adapter.readReply(reply, reading);
}

}  // namespace zerva
