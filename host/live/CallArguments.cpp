#include "host/live/CallArguments.h"

#include <charconv>
#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <system_error>

#include "framework/ValueWriter.h"
#include "runtime/libClientUtils/protocols/XmlText.h"

namespace zerva {
namespace {

using Json = nlohmann::ordered_json;

/** @returns the number that a text is from its first to its last character. */
template <typename Number>
std::optional<Number> whole(const std::string& text) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  if (text.empty() || result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return number;
}

std::optional<Json> readInteger(const std::string& text) {
  if (const auto number = whole<std::int64_t>(text)) return Json(*number);
  if (const auto number = whole<std::uint64_t>(text)) return Json(*number);
  return std::nullopt;
}

std::optional<Json> readReal(const std::string& text) {
  if (const auto number = whole<double>(text)) return Json(*number);
  return std::nullopt;
}

std::optional<Json> readBool(const std::string& text) {
  if (text == "true" || text == "false") return Json(text == "true");
  return std::nullopt;
}

std::optional<Json> readText(const std::string& text) { return Json(text); }

std::optional<Json> readBytes(const std::string& text) {
  if (const auto bytes = fromHexadecimal(text)) return Json(*bytes);
  return std::nullopt;
}

std::optional<Json> readList(const std::string& text) {
  Json json = Json::parse(text, nullptr, false);
  if (!json.is_array() && !json.is_object()) return std::nullopt;
  return json;
}

using Reader = std::optional<Json> (*)(const std::string&);

const std::map<std::string, Reader>& readers() {
  static const std::map<std::string, Reader> all{{"bool", &readBool},   {"integer", &readInteger},
                                                 {"real", &readReal},   {"text", &readText},
                                                 {"bytes", &readBytes}, {"list", &readList}};
  return all;
}

Json readByForm(const std::string& word) {
  for (const Reader reader : {&readBool, &readInteger, &readList}) {
    if (auto value = reader(word)) return *std::move(value);
  }
  // Names as "inf" and "nan" are words first.
  if (word.find_first_of("0123456789") != std::string::npos) {
    if (auto value = readReal(word)) return *std::move(value);
  }
  if (word.size() > 1 && word.front() == '"') {
    const Json text = Json::parse(word, nullptr, false);
    if (text.is_string()) return text;
  }
  return word;
}

void writeValue(ValueWriter& writer, const Json& value) {
  if (value.is_boolean()) {
    writer.writeBool(value);
  } else if (value.is_number_unsigned()) {
    writer.writeUnsigned(value);
  } else if (value.is_number_integer()) {
    writer.writeInteger(value);
  } else if (value.is_number_float()) {
    writer.writeReal(value);
  } else if (value.is_string()) {
    writer.writeText(value.get_ref<const std::string&>());
  } else if (value.is_array()) {
    writer.beginList(value.size());
    for (const Json& item : value) writeValue(writer, item);
    writer.endList();
  } else if (value.is_object()) {
    // As a map is: each key is followed by its value.
    writer.beginList(value.size() * 2);
    for (const auto& [key, item] : value.items()) {
      writer.writeText(key);
      writeValue(writer, item);
    }
    writer.endList();
  } else {
    writer.writeNothing();
  }
}

}  // namespace

nlohmann::ordered_json readArgument(const std::string& word) {
  const std::size_t equals = word.find('=');
  if (equals != std::string::npos) {
    const std::size_t colon = word.rfind(':', equals);
    const std::size_t begin = colon == std::string::npos ? 0 : colon + 1;
    const auto reader = readers().find(word.substr(begin, equals - begin));
    if (reader != readers().end()) {
      if (auto value = reader->second(word.substr(equals + 1))) return *std::move(value);
      throw std::invalid_argument("'" + word + "': '" + word.substr(equals + 1) +
                                  "' is no value of type " + reader->first);
    }
  }
  return readByForm(word);
}

CallArguments::CallArguments(const std::vector<std::string>& words) : values_(Json::array()) {
  for (const std::string& word : words) values_.push_back(readArgument(word));
}

void CallArguments::write(ValueWriter& writer) const { writeValue(writer, values_); }

}  // namespace zerva
