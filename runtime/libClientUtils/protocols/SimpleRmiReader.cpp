#include "runtime/libClientUtils/protocols/SimpleRmiReader.h"

#include <bit>
#include <limits>

#include "framework/DecodeException.h"

namespace zerva {
namespace {

[[noreturn]] void failAt(std::size_t offset, const std::string& what) {
  throw DecodeException("at byte " + std::to_string(offset) + ": " + what);
}

/** What the bytes of one value are taken from. */
class Bytes {
 public:
  Bytes(std::string_view all, std::size_t begin) : all_(all), begin_(begin), at_(begin) {}

  /** @returns where the next value begins. */
  std::size_t end() const { return at_; }

  std::string_view take(std::size_t size) {
    if (size > all_.size() - at_) fail();
    at_ += size;
    return {all_.data() + at_ - size, size};
  }

  /** Takes a number, which has its highest byte first. */
  template <typename Number>
  Number number() {
    std::uint64_t number = 0;
    for (const char byte : take(sizeof(Number))) {
      number = number << 8U | static_cast<unsigned char>(byte);
    }
    return static_cast<Number>(number);
  }

  [[noreturn]] void fail() const {
    failAt(begin_, "the bytes end early or are none of the protocol");
  }

 private:
  const std::string_view all_;
  const std::size_t begin_;
  std::size_t at_;
};

}  // namespace

/** The next value, or only the head of it where it is a list. */
struct SimpleRmiReader::Value {
  enum class Kind { Other, Nothing, Bool, Negative, Unsigned, Real, Text, List };

  void takeFrom(Bytes& bytes);
  void takeLong(std::uint8_t head, Bytes& bytes);

  void set(Kind what, std::uint64_t itsNumber) {
    kind = what;
    number = itsNumber;
  }
  void setInteger(std::int64_t value) {
    set(value < 0 ? Kind::Negative : Kind::Unsigned, static_cast<std::uint64_t>(value));
  }
  void setReal(double value) {
    kind = Kind::Real;
    real = value;
  }
  void setText(std::string_view value) {
    kind = Kind::Text;
    text = value;
  }

  Kind kind = Kind::Other;
  std::uint64_t number = 0;  // of a bool, of both kinds of integers, and the size of a list
  double real = 0;
  std::string_view text;
};

// The library that writes values reads whole ones only, and takes memory for each list.
void SimpleRmiReader::Value::takeFrom(Bytes& bytes) {
  const auto head = bytes.number<std::uint8_t>();
  if (head <= 0x7f) {
    set(Kind::Unsigned, head);
  } else if (head >= 0xe0) {
    setInteger(static_cast<std::int8_t>(head));
  } else if (head >= 0xc0) {
    takeLong(head, bytes);
  } else if (head >= 0xa0) {
    setText(bytes.take(head & 0x1fU));
  } else if (head >= 0x90) {
    set(Kind::List, head & 0x0fU);
  }  // else it is a map, which stays another kind
}

/** Takes a value whose kind and size the first byte says, and nothing else. */
void SimpleRmiReader::Value::takeLong(std::uint8_t head, Bytes& bytes) {
  switch (head) {
    case 0xc0:
      return set(Kind::Nothing, 0);
    case 0xc1:
      return bytes.fail();
    case 0xc2:
    case 0xc3:
      return set(Kind::Bool, head & 1U);
    case 0xc4:
    case 0xd9:
      return setText(bytes.take(bytes.number<std::uint8_t>()));
    case 0xc5:
    case 0xda:
      return setText(bytes.take(bytes.number<std::uint16_t>()));
    case 0xc6:
    case 0xdb:
      return setText(bytes.take(bytes.number<std::uint32_t>()));
    case 0xca:
      return setReal(std::bit_cast<float>(bytes.number<std::uint32_t>()));
    case 0xcb:
      return setReal(std::bit_cast<double>(bytes.number<std::uint64_t>()));
    case 0xcc:
      return set(Kind::Unsigned, bytes.number<std::uint8_t>());
    case 0xcd:
      return set(Kind::Unsigned, bytes.number<std::uint16_t>());
    case 0xce:
      return set(Kind::Unsigned, bytes.number<std::uint32_t>());
    case 0xcf:
      return set(Kind::Unsigned, bytes.number<std::uint64_t>());
    case 0xd0:
      return setInteger(bytes.number<std::int8_t>());
    case 0xd1:
      return setInteger(bytes.number<std::int16_t>());
    case 0xd2:
      return setInteger(bytes.number<std::int32_t>());
    case 0xd3:
      return setInteger(bytes.number<std::int64_t>());
    case 0xdc:
      return set(Kind::List, bytes.number<std::uint16_t>());
    case 0xdd:
      return set(Kind::List, bytes.number<std::uint32_t>());
    default:  // a map or an extension, which stays another kind
      return;
  }
}

SimpleRmiReader::Value SimpleRmiReader::next() {
  Bytes bytes(bytes_, at_);
  Value value;
  value.takeFrom(bytes);
  at_ = bytes.end();
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

std::string SimpleRmiReader::readText() { return std::string(readView()); }

std::string_view SimpleRmiReader::readView() {
  const std::size_t start = at_;
  const Value value = next();
  if (value.kind != Value::Kind::Text) failAt(start, "a text was expected");
  return value.text;
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
