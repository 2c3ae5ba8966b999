// Input: as `checkCallBytes` takes it, in the protocol for people.

#include <algorithm>
#include <rapidxml/rapidxml.hpp>
#include <vector>

#include "runtime/libClientUtils/protocols/SvcXmlAdapter.h"
#include "runtime/libClientUtils/protocols/XmlText.h"
#include "tests/fuzz/CallBytes.h"
#include "tests/fuzz/FuzzTarget.h"

using namespace zerva;
using namespace zerva::fuzz;

namespace {

using Node = rapidxml::xml_node<>;

/** Enough to see a count that is wrong, and no danger to the stack when it is. */
constexpr std::ptrdiff_t kMostElements = 200;

/** @returns what the parser has made below a node. */
XmlShape shapeOf(const Node& node) {
  XmlShape shape;
  for (const auto* a = node.first_attribute(); a != nullptr; a = a->next_attribute()) ++shape.nodes;
  for (const Node* child = node.first_node(); child != nullptr; child = child->next_sibling()) {
    if (child->type() != rapidxml::node_element) continue;
    const XmlShape below = shapeOf(*child);
    shape.depth = std::max(shape.depth, 1 + below.depth);
    shape.nodes += 1 + below.nodes;
  }
  return shape;
}

/** What is counted beforehand keeps a parser's stack, and the memory, from being exhausted. */
void checkShape(std::string_view text) {
  const auto counted = xmlShape(text);
  if (!counted || std::count(text.begin(), text.end(), '<') > kMostElements) return;
  std::vector<char> copy(text.begin(), text.end());
  copy.push_back('\0');
  rapidxml::xml_document<> document;
  try {
    document.parse<rapidxml::parse_validate_closing_tags>(copy.data());
  } catch (const rapidxml::parse_error&) {
    return;
  }
  const XmlShape made = shapeOf(document);
  require(made.depth <= counted->depth, "no parser goes deeper than was counted");
  require(made.nodes <= counted->nodes, "no parser makes more than was counted");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view text = textOf(data, size);
  SvcXmlAdapter adapter;
  checkCallBytes(adapter, text);
  takeLine(text);
  checkShape(text);
  return 0;
}
