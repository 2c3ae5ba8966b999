#include "tests/fuzz/CallValue.h"

#include <cmath>

#include "framework/DecodeException.h"
#include "tests/fuzz/FuzzTarget.h"

namespace zerva::fuzz {
namespace {

constexpr unsigned kDeepest = 80;

std::optional<CallShape> takeShape(std::string_view& text, unsigned depth);

/** Takes the shapes up to the closing parenthesis. */
bool takeItems(std::string_view& text, unsigned depth, std::vector<CallShape>& items) {
  while (!text.empty() && text.front() != ')') {
    auto item = takeShape(text, depth);
    if (!item) return false;
    items.push_back(*std::move(item));
  }
  if (text.empty()) return false;
  text.remove_prefix(1);
  return true;
}

std::optional<CallShape> takeShape(std::string_view& text, unsigned depth) {
  if (text.empty() || depth > kDeepest) return std::nullopt;
  CallShape shape{text.front(), {}};
  text.remove_prefix(1);
  if (shape.kind == '(') {
    if (!takeItems(text, depth + 1, shape.items)) return std::nullopt;
    return shape;
  }
  if (shape.kind == '*') {
    auto item = takeShape(text, depth + 1);
    if (!item) return std::nullopt;
    shape.items.push_back(*std::move(item));
    return shape;
  }
  if (std::string_view("nbiurt").find(shape.kind) == std::string_view::npos) return std::nullopt;
  return shape;
}

CallValue readList(ValueReader& reader, const CallShape& shape, std::size_t most) {
  CallValue value{shape.kind};
  const std::size_t size = reader.beginList();
  require(size <= most, "a list is never said to be longer than the bytes");
  if (shape.kind == '(' && size != shape.items.size()) throw DecodeException("another size");
  for (std::size_t at = 0; at < size; ++at) {
    const CallShape& item = shape.kind == '(' ? shape.items[at] : shape.items[0];
    value.items.push_back(readValue(reader, item, most));
  }
  reader.endList();
  return value;
}

}  // namespace

std::optional<CallShape> parseShape(std::string_view text) {
  auto shape = takeShape(text, 0);
  return text.empty() ? shape : std::nullopt;
}

bool CallValue::operator==(const CallValue& other) const {
  const bool sameReal = real == other.real || (std::isnan(real) && std::isnan(other.real));
  return kind == other.kind && number == other.number && sameReal &&
         std::signbit(real) == std::signbit(other.real) && text == other.text &&
         items == other.items;
}

CallValue readValue(ValueReader& reader, const CallShape& shape, std::size_t most) {
  CallValue value{shape.kind};
  switch (shape.kind) {
    case 'n':
      reader.readNothing();
      break;
    case 'b':
      value.number = reader.readBool() ? 1 : 0;
      break;
    case 'i':
      value.number = static_cast<std::uint64_t>(reader.readInteger());
      break;
    case 'u':
      value.number = reader.readUnsigned();
      break;
    case 'r':
      value.real = reader.readReal();
      break;
    case 't':
      value.text = reader.readText();
      require(value.text.size() <= most, "no text is longer than the bytes");
      break;
    default:
      return readList(reader, shape, most);
  }
  return value;
}

void writeValue(ValueWriter& writer, const CallValue& value) {
  switch (value.kind) {
    case 'n':
      return writer.writeNothing();
    case 'b':
      return writer.writeBool(value.number != 0);
    case 'i':
      return writer.writeInteger(static_cast<std::int64_t>(value.number));
    case 'u':
      return writer.writeUnsigned(value.number);
    case 'r':
      return writer.writeReal(value.real);
    case 't':
      return writer.writeText(value.text);
    default:
      writer.beginList(value.items.size());
      for (const CallValue& item : value.items) writeValue(writer, item);
      writer.endList();
  }
}

}  // namespace zerva::fuzz
