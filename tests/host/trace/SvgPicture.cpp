#include "tests/host/trace/SvgPicture.h"

#include <cstdlib>
#include <rapidxml/rapidxml.hpp>

#include "host/trace/Svg.h"

namespace zerva {
namespace {

using Node = rapidxml::xml_node<>;

std::string attribute(const Node& node, const char* name) {
  const auto* found = node.first_attribute(name);
  return found == nullptr ? "" : found->value();
}

double number(const Node& node, const char* name) {
  return std::strtod(attribute(node, name).c_str(), nullptr);
}

double sizeOf(const std::string& cssClass) {
  if (cssClass == "title") return 18;
  if (cssClass == "head") return 13;
  return cssClass == "small" || cssClass == "bad" || cssClass == "count" ? 10 : 12;
}

SvgPicture::Text readText(const Node& node, const std::string& group) {
  SvgPicture::Text text;
  text.text = node.value();
  text.cssClass = attribute(node, "class");
  text.size = sizeOf(text.cssClass);
  text.group = group;
  text.box.width = textWidth(text.text, text.size);
  text.box.height = text.size * 0.8;
  text.box.x = number(node, "x");
  text.box.y = number(node, "y") - text.box.height;
  const std::string anchor = attribute(node, "text-anchor");
  if (anchor == "middle") text.box.x -= text.box.width / 2;
  if (anchor == "end") text.box.x -= text.box.width;
  return text;
}

void readInto(SvgPicture& picture, const Node& parent, const std::string& group) {
  for (const Node* node = parent.first_node(); node != nullptr; node = node->next_sibling()) {
    const std::string name = node->name();
    if (name == "g") readInto(picture, *node, attribute(*node, "class"));
    if (name == "text") picture.texts.push_back(readText(*node, group));
    if (name == "rect") {
      picture.boxes.push_back({attribute(*node, "class"), number(*node, "x"), number(*node, "y"),
                               number(*node, "width"), number(*node, "height")});
    }
  }
}

bool overlap(const SvgPicture::Box& one, const SvgPicture::Box& other) {
  return one.x < other.x + other.width && other.x < one.x + one.width &&
         one.y < other.y + other.height && other.y < one.y + one.height;
}

}  // namespace

SvgPicture SvgPicture::read(const std::string& document) {
  std::vector<char> text(document.begin(), document.end());
  text.push_back('\0');
  rapidxml::xml_document<> parsed;
  parsed.parse<rapidxml::parse_validate_closing_tags>(text.data());
  const Node& root = *parsed.first_node("svg");
  SvgPicture picture;
  picture.width = number(root, "width");
  picture.height = number(root, "height");
  readInto(picture, root, "");
  return picture;
}

std::vector<std::string> SvgPicture::textsOf(const std::string& cssClass) const {
  std::vector<std::string> found;
  for (const Text& text : texts) {
    if (text.cssClass == cssClass) found.push_back(text.text);
  }
  return found;
}

std::vector<std::string> SvgPicture::misfits() const {
  std::vector<std::string> found;
  for (std::size_t place = 0; place < texts.size(); ++place) {
    const Box& box = texts[place].box;
    if (box.x < 0 || box.y < 0 || box.x + box.width > width || box.y + box.height > height) {
      found.push_back("beyond the edge: " + texts[place].text);
    }
    for (std::size_t other = 0; other < place; ++other) {
      if (overlap(box, texts[other].box)) {
        found.push_back(texts[place].text + " lies on " + texts[other].text);
      }
    }
  }
  return found;
}

}  // namespace zerva
