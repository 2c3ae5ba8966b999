#include "runtime/libClientUtils/protocols/SvcXmlReader.h"

#include <charconv>
#include <rapidxml/rapidxml.hpp>
#include <string_view>
#include <system_error>
#include <vector>

#include "framework/DecodeException.h"
#include "runtime/libClientUtils/protocols/XmlText.h"

namespace zerva {
namespace {

using Node = rapidxml::xml_node<>;

/** Deeper than any interface nests its lists, and no danger to the smallest stack. */
constexpr unsigned kMaximumDepth = 64;

/** Some 50 to 100 bytes each: more than a call needs, and no danger to a 32-bit process. */
constexpr std::size_t kMaximumNodes = 1'000'000;

std::string_view nameOf(const Node& node) { return {node.name(), node.name_size()}; }

/** @returns the next element; text between elements is no value. */
const Node* elementFrom(const Node* node) {
  while (node != nullptr && node->type() != rapidxml::node_element) {
    node = node->next_sibling();
  }
  return node;
}

template <typename Number>
Number parsed(const std::string& text, const char* what) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  if (result.ec == std::errc::result_out_of_range) {
    throw DecodeException("'" + text + "' is out of range");
  }
  if (result.ec != std::errc() || result.ptr != end) {
    throw DecodeException("'" + text + "' is not " + what);
  }
  return number;
}

}  // namespace

/** The parsed text, and where the reader is in it. */
struct SvcXmlReader::Document {
  std::vector<char> text;  // the nodes below point into it
  rapidxml::xml_document<> nodes;
  const Node* root = nullptr;
  const Node* next = nullptr;
  std::vector<const Node*> lists;  // those that were entered
};

SvcXmlReader::SvcXmlReader(const std::string& text, const char* root)
    : document_(std::make_unique<Document>()) {
  const auto shape = xmlShape(text);
  if (!shape) throw DecodeException("comments, document types and zeros are not allowed");
  if (shape->depth > kMaximumDepth) throw DecodeException("the elements are nested too deeply");
  if (shape->nodes > kMaximumNodes) throw DecodeException("there are too many elements");
  document_->text.assign(text.begin(), text.end());
  document_->text.push_back('\0');
  try {
    document_->nodes.parse<rapidxml::parse_validate_closing_tags>(document_->text.data());
  } catch (const rapidxml::parse_error& error) {
    throw DecodeException("at character " +
                          std::to_string(error.where<char>() - document_->text.data()) + ": " +
                          error.what());
  }
  document_->root = elementFrom(document_->nodes.first_node());
  if (document_->root == nullptr || nameOf(*document_->root) != root) {
    throw DecodeException(std::string("there is no element '") + root + "'");
  }
  document_->next = elementFrom(document_->root->first_node());
}

SvcXmlReader::~SvcXmlReader() = default;

std::string SvcXmlReader::method() const {
  const auto* const attribute = document_->root->first_attribute("method");
  if (attribute == nullptr) throw DecodeException("the call names no method");
  return {attribute->value(), attribute->value_size()};
}

/** @returns the content of the next element, which has to be of a kind, and goes on behind it. */
std::string SvcXmlReader::take(const char* kind) {
  const Node* const node = document_->next;
  if (node == nullptr || nameOf(*node) != kind) {
    throw DecodeException(std::string("'") + kind + "' was expected, but there is " +
                          (node == nullptr ? "no more" : "'" + std::string(nameOf(*node)) + "'"));
  }
  document_->next = elementFrom(node->next_sibling());
  return {node->value(), node->value_size()};
}

void SvcXmlReader::readNothing() { take("nothing"); }

bool SvcXmlReader::readBool() {
  const std::string text = take("bool");
  if (text != "true" && text != "false") throw DecodeException("'" + text + "' is no truth value");
  return text == "true";
}

std::int64_t SvcXmlReader::readInteger() {
  return parsed<std::int64_t>(take("integer"), "an integer");
}

std::uint64_t SvcXmlReader::readUnsigned() {
  return parsed<std::uint64_t>(take("integer"), "an integer of zero or more");
}

double SvcXmlReader::readReal() { return parsed<double>(take("real"), "a number"); }

std::string SvcXmlReader::readText() {
  if (document_->next == nullptr || nameOf(*document_->next) != "bytes") return take("text");
  auto bytes = fromHexadecimal(take("bytes"));
  if (!bytes) throw DecodeException("'bytes' holds other than hexadecimal digits");
  return *std::move(bytes);
}

std::size_t SvcXmlReader::beginList() {
  const Node* const list = document_->next;
  take("list");
  document_->lists.push_back(list);
  document_->next = elementFrom(list->first_node());
  std::size_t size = 0;
  for (const Node* node = document_->next; node != nullptr;
       node = elementFrom(node->next_sibling())) {
    ++size;
  }
  return size;
}

void SvcXmlReader::endList() {
  document_->next = elementFrom(document_->lists.back()->next_sibling());
  document_->lists.pop_back();
}

void SvcXmlReader::end() const {
  if (document_->next != nullptr) throw DecodeException("nothing more was expected");
}

}  // namespace zerva
