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

unsigned depthOf(const Node& node) {
  unsigned deepest = 0;
  for (const Node* child = node.first_node(); child != nullptr; child = child->next_sibling()) {
    if (child->type() == rapidxml::node_element) deepest = std::max(deepest, 1 + depthOf(*child));
  }
  return deepest;
}

/** The depth that is counted beforehand is what keeps a parser's stack from being exhausted. */
void checkDepth(std::string_view text) {
  const auto counted = xmlDepth(text);
  if (!counted || std::count(text.begin(), text.end(), '<') > kMostElements) return;
  std::vector<char> copy(text.begin(), text.end());
  copy.push_back('\0');
  rapidxml::xml_document<> document;
  try {
    document.parse<rapidxml::parse_validate_closing_tags>(copy.data());
  } catch (const rapidxml::parse_error&) {
    return;
  }
  require(depthOf(document) <= *counted, "no parser goes deeper than was counted");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view text = textOf(data, size);
  SvcXmlAdapter adapter;
  checkCallBytes(adapter, text);
  takeLine(text);
  checkDepth(text);
  return 0;
}
