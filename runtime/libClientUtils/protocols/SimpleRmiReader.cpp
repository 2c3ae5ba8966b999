#include "runtime/libClientUtils/protocols/SimpleRmiReader.h"

#include <limits>
#include <msgpack.hpp>

#include "framework/DecodeException.h"

namespace zerva {

/** The next value, or only the head of it where it is a list. */
struct SimpleRmiReader::Value {
  enum class Kind { None, Nothing, Bool, Negative, Unsigned, Real, Text, List, Other };

  Kind kind = Kind::None;
  std::uint64_t number = 0;  // of a bool, of both kinds of integers, and the size of a list
  double real = 0;
  std::string_view text;
};

namespace {

[[noreturn]] void failAt(std::size_t offset, const std::string& what) {
  throw DecodeException("at byte " + std::to_string(offset) + ": " + what);
}

}  // namespace

SimpleRmiReader::Value SimpleRmiReader::next() {
  // Stops behind the head of a list, whose values are then read one by one.
  struct Visitor : msgpack::null_visitor {
    explicit Visitor(Value& target) : value(target) {}
    bool set(Value::Kind kind, std::uint64_t number = 0) {
      value.kind = kind;
      value.number = number;
      return true;
    }
    // The names are those that the parser calls.
    bool visit_nil() { return set(Value::Kind::Nothing); }
    bool visit_boolean(bool is) { return set(Value::Kind::Bool, is ? 1 : 0); }
    bool visit_positive_integer(std::uint64_t number) { return set(Value::Kind::Unsigned, number); }
    bool visit_negative_integer(std::int64_t number) {
      return set(Value::Kind::Negative, static_cast<std::uint64_t>(number));
    }
    bool visit_float32(float number) { return visit_float64(number); }
    bool visit_float64(double number) {
      value.real = number;
      return set(Value::Kind::Real);
    }
    bool visit_str(const char* data, std::uint32_t size) {
      value.text = {data, size};
      return set(Value::Kind::Text);
    }
    bool visit_bin(const char* data, std::uint32_t size) { return visit_str(data, size); }
    bool visit_ext(const char* /*data*/, std::uint32_t /*size*/) { return set(Value::Kind::Other); }
    bool start_array(std::uint32_t size) { return set(Value::Kind::List, size); }
    bool start_array_item() { return false; }
    bool start_map(std::uint32_t /*size*/) {
      set(Value::Kind::Other);
      return false;
    }
    void parse_error(std::size_t /*from*/, std::size_t /*at*/) { value.kind = Value::Kind::None; }
    void insufficient_bytes(std::size_t /*from*/, std::size_t /*at*/) {
      value.kind = Value::Kind::None;
    }
    Value& value;
  };

  Value value;
  Visitor visitor(value);
  std::size_t end = at_;
  try {
    msgpack::parse(bytes_.data(), bytes_.size(), end, visitor);
  } catch (const msgpack::unpack_error&) {
    // Where sizes have 32 bits, an extension may claim to be larger than they can count.
    value.kind = Value::Kind::None;
  }
  if (value.kind == Value::Kind::None) {
    failAt(at_, "the bytes end early or are none of the protocol");
  }
  at_ = end;
  return value;
}

void SimpleRmiReader::readNothing() {
  const std::size_t start = at_;
  if (next().kind != Value::Kind::Nothing) failAt(start, "no value was expected");
}

bool SimpleRmiReader::readBool() {
  const std::size_t start = at_;
  const Value value = next();
  if (value.kind != Value::Kind::Bool) failAt(start, "a truth value was expected");
  return value.number != 0;
}

std::int64_t SimpleRmiReader::readInteger() {
  const std::size_t start = at_;
  const Value value = next();
  if (value.kind != Value::Kind::Negative && value.kind != Value::Kind::Unsigned) {
    failAt(start, "an integer was expected");
  }
  if (value.kind == Value::Kind::Unsigned &&
      value.number > std::uint64_t{std::numeric_limits<std::int64_t>::max()}) {
    failAt(start, "the integer is too large");
  }
  return static_cast<std::int64_t>(value.number);
}

std::uint64_t SimpleRmiReader::readUnsigned() {
  const std::size_t start = at_;
  const Value value = next();
  if (value.kind == Value::Kind::Negative) failAt(start, "the integer is negative");
  if (value.kind != Value::Kind::Unsigned) failAt(start, "an integer was expected");
  return value.number;
}

double SimpleRmiReader::readReal() {
  const std::size_t start = at_;
  const Value value = next();
  // Other writers of MessagePack shorten whole numbers.
  if (value.kind == Value::Kind::Unsigned) return static_cast<double>(value.number);
  if (value.kind == Value::Kind::Negative) {
    return static_cast<double>(static_cast<std::int64_t>(value.number));
  }
  if (value.kind != Value::Kind::Real) failAt(start, "a number was expected");
  return value.real;
}

std::string SimpleRmiReader::readText() {
  const std::size_t start = at_;
  const Value value = next();
  if (value.kind != Value::Kind::Text) failAt(start, "a text was expected");
  return std::string(value.text);
}

std::size_t SimpleRmiReader::beginList() {
  const std::size_t start = at_;
  const Value value = next();
  if (value.kind != Value::Kind::List) failAt(start, "a list was expected");
  // Each value takes a byte at least.
  if (value.number > bytes_.size() - at_) failAt(start, "the list is longer than the bytes");
  return static_cast<std::size_t>(value.number);
}

void SimpleRmiReader::end() const {
  if (at_ != bytes_.size()) failAt(at_, "nothing more was expected");
}

}  // namespace zerva
