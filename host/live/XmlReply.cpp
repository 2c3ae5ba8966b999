#include "host/live/XmlReply.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <rapidxml/rapidxml.hpp>
#include <string_view>
#include <system_error>
#include <vector>

#include "framework/DecodeException.h"
#include "runtime/libClientUtils/protocols/XmlText.h"

namespace zerva {
namespace {

using Json = nlohmann::ordered_json;
using Node = rapidxml::xml_node<>;

// The limits of the protocol.
constexpr unsigned kMaximumDepth = 64;
constexpr std::size_t kMaximumNodes = 1'000'000;

/** @returns the number that a text is, or nothing. */
template <typename Number>
bool parse(std::string_view text, Number& number) {
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

Json integerOf(std::string_view text) {
  std::int64_t number = 0;
  if (parse(text, number)) return number;
  std::uint64_t unsignedNumber = 0;
  if (parse(text, unsignedNumber)) return unsignedNumber;
  throw DecodeException("'" + std::string(text) + "' is not an integer");
}

Json realOf(std::string_view text) {
  double number = 0;
  if (!parse(text, number)) throw DecodeException("'" + std::string(text) + "' is not a number");
  if (!std::isfinite(number)) return "real=" + std::string(text);
  return number;
}

const Node* elementFrom(const Node* node) {
  while (node != nullptr && node->type() != rapidxml::node_element) node = node->next_sibling();
  return node;
}

// As deep as the elements are nested, of which there are few.
// NOLINTNEXTLINE(misc-no-recursion)
Json valueOf(const Node& node) {
  const std::string_view name(node.name(), node.name_size());
  const std::string_view text(node.value(), node.value_size());
  if (name == "nothing") return nullptr;
  if (name == "bool") return text == "true";
  if (name == "integer") return integerOf(text);
  if (name == "real") return realOf(text);
  if (name == "text") return std::string(text);
  if (name == "bytes") return "bytes=" + std::string(text);
  if (name != "list") throw DecodeException("'" + std::string(name) + "' is no value");
  Json list = Json::array();
  for (const Node* item = elementFrom(node.first_node()); item != nullptr;
       item = elementFrom(item->next_sibling())) {
    list.push_back(valueOf(*item));
  }
  return list;
}

}  // namespace

nlohmann::ordered_json readXmlReply(const std::string& reply) {
  const auto shape = xmlShape(reply);
  if (!shape) throw DecodeException("comments, document types and zeros are not allowed");
  if (shape->depth > kMaximumDepth || shape->nodes > kMaximumNodes) {
    throw DecodeException("there are too many elements, or they are nested too deeply");
  }
  std::vector<char> text(reply.begin(), reply.end());
  text.push_back('\0');
  rapidxml::xml_document<> document;
  try {
    document.parse<rapidxml::parse_validate_closing_tags>(text.data());
  } catch (const rapidxml::parse_error& error) {
    throw DecodeException(error.what());
  }
  const Node* const root = elementFrom(document.first_node());
  if (root == nullptr || std::string_view(root->name(), root->name_size()) != "reply") {
    throw DecodeException("there is no element 'reply'");
  }
  const Node* const value = elementFrom(root->first_node());
  if (value == nullptr || elementFrom(value->next_sibling()) != nullptr) {
    throw DecodeException("it does not hold one value");
  }
  return valueOf(*value);
}

}  // namespace zerva
