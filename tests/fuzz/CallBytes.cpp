#include "tests/fuzz/CallBytes.h"

#include <optional>
#include <string>

#include "framework/DecodeException.h"
#include "framework/Readable.h"
#include "framework/Writable.h"
#include "tests/fuzz/CallValue.h"
#include "tests/fuzz/FuzzTarget.h"

namespace zerva::fuzz {
namespace {

struct Reading final : Readable {
  Reading(const CallShape& expected, std::size_t size) : shape(expected), most(size) {}
  void read(ValueReader& reader) override { value = readValue(reader, shape, most); }

  const CallShape& shape;
  std::size_t most;
  CallValue value{'n'};
};

struct Writing final : Writable {
  explicit Writing(const CallValue& what) : value(what) {}
  void write(ValueWriter& writer) const override { writeValue(writer, value); }

  const CallValue& value;
};

/** @returns what a function gives, or nothing when it refuses the bytes. */
template <typename Function>
auto unlessRefused(const Function& function) -> std::optional<decltype(function())> {
  try {
    return function();
  } catch (const DecodeException&) {
    return std::nullopt;
  }
}

using Value = std::optional<CallValue>;

Value callOf(ProtocolAdapter& adapter, const std::string& bytes, const CallShape& shape) {
  return unlessRefused([&] {
    Reading reading(shape, bytes.size());
    adapter.readCall(bytes, reading);
    return reading.value;
  });
}

Value replyOf(ProtocolAdapter& adapter, const std::string& bytes, const CallShape& shape) {
  return unlessRefused([&] {
    Reading reading(shape, bytes.size());
    adapter.readReply(bytes, reading);
    return reading.value;
  });
}

}  // namespace

void checkCallBytes(ProtocolAdapter& adapter, std::string_view input) {
  const auto shape = parseShape(takeLine(input));
  const std::string bytes(input);
  const auto method = unlessRefused([&] { return adapter.methodOf(bytes); });
  require(!method || method->size() <= bytes.size(), "no name is longer than the bytes");
  if (!shape) return;

  std::string written;
  if (const Value arguments = callOf(adapter, bytes, *shape)) {
    adapter.writeCall("method", Writing(*arguments), written);
    require(adapter.methodOf(written) == "method" && callOf(adapter, written, *shape) == arguments,
            "a call that was read is written and read again");
  }
  if (const Value result = replyOf(adapter, bytes, *shape)) {
    adapter.writeReply(Writing(*result), written);
    require(replyOf(adapter, written, *shape) == result,
            "a reply that was read is written and read again");
  }
}

}  // namespace zerva::fuzz
