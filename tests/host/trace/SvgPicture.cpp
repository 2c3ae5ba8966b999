#include "tests/host/trace/SvgPicture.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <rapidxml/rapidxml.hpp>
#include <string_view>

#include "host/trace/Svg.h"

namespace zerva {
namespace {

// Widths of letters, from the blank to the tilde, in thousandths of the size.
constexpr std::array<int, 95> kRegular = {
    318, 401, 460, 838, 636, 950, 780, 275, 390, 390, 500, 838, 318, 361,  318, 337, 636, 636, 636,
    636, 636, 636, 636, 636, 636, 636, 337, 337, 838, 838, 838, 531, 1000, 684, 686, 698, 770, 632,
    575, 775, 752, 295, 295, 656, 557, 863, 748, 787, 603, 787, 695, 635,  611, 732, 684, 989, 685,
    611, 685, 390, 337, 390, 838, 500, 500, 613, 635, 550, 635, 615, 352,  635, 634, 278, 278, 579,
    278, 974, 634, 612, 635, 635, 411, 521, 392, 634, 592, 818, 592, 592,  525, 636, 337, 636, 838};
constexpr std::array<int, 95> kBold = {
    348,  456, 521, 838, 696, 1002, 872, 306,  457, 457, 523, 838, 380, 415,  380, 365,
    696,  696, 696, 696, 696, 696,  696, 696,  696, 696, 400, 400, 838, 838,  838, 580,
    1000, 774, 762, 734, 830, 683,  683, 821,  837, 372, 372, 775, 637, 995,  837, 850,
    733,  850, 770, 720, 682, 812,  774, 1103, 771, 724, 725, 457, 365, 457,  838, 500,
    500,  675, 716, 593, 716, 678,  435, 716,  712, 343, 343, 665, 343, 1042, 712, 687,
    716,  716, 493, 595, 478, 712,  652, 924,  645, 652, 582, 712, 365, 712,  838};

/** What is beyond is no wider than this: the ellipsis, and the sign for what is none. */
constexpr int kWidest = 1000;

using Node = rapidxml::xml_node<>;

std::string attribute(const Node& node, const char* name) {
  const auto* found = node.first_attribute(name);
  return found == nullptr ? "" : found->value();
}

double number(const Node& node, const char* name) {
  return std::strtod(attribute(node, name).c_str(), nullptr);
}

/** How the texts of a class are written, by the picture's rules for it. */
struct Writing {
  double size = 12;
  bool bold = false;
};

Writing writingOf(const std::string& style, const std::string& cssClass) {
  Writing writing;
  const std::size_t begin = style.find("." + cssClass + "{");
  if (cssClass.empty() || begin == std::string::npos) return writing;
  const std::string rule = style.substr(begin, style.find('}', begin) - begin);
  constexpr std::string_view size = "font-size:";
  const std::size_t at = rule.find(size);
  if (at != std::string::npos) writing.size = std::strtod(&rule[at + size.size()], nullptr);
  writing.bold = rule.find("font-weight:bold") != std::string::npos;
  return writing;
}

SvgPicture::Text readText(const Node& node, const std::string& group, const std::string& style) {
  SvgPicture::Text text;
  text.text = node.value();
  text.cssClass = attribute(node, "class");
  const Writing writing = writingOf(style, text.cssClass);
  text.group = group;
  // Those who have other letters have them no wider than was reckoned with.
  text.box.width = std::max(textWidth(text.text, writing.size),
                            widthOfLetters(text.text, writing.size, writing.bold));
  text.box.height = writing.size * 0.8;
  text.box.x = number(node, "x");
  text.baseline = number(node, "y");
  text.box.y = text.baseline - text.box.height;
  const std::string anchor = attribute(node, "text-anchor");
  if (anchor == "middle") text.box.x -= text.box.width / 2;
  if (anchor == "end") text.box.x -= text.box.width;
  return text;
}

void readInto(SvgPicture& picture, const Node& parent, const std::string& group,
              const std::string& style) {
  for (const Node* node = parent.first_node(); node != nullptr; node = node->next_sibling()) {
    const std::string name = node->name();
    if (name == "g") readInto(picture, *node, attribute(*node, "class"), style);
    if (name == "text") picture.texts.push_back(readText(*node, group, style));
    if (name == "rect") {
      picture.boxes.push_back({attribute(*node, "class"), number(*node, "x"), number(*node, "y"),
                               number(*node, "width"), number(*node, "height"), group});
    }
  }
}

bool overlap(const SvgPicture::Box& one, const SvgPicture::Box& other) {
  return one.x < other.x + other.width && other.x < one.x + one.width &&
         one.y < other.y + other.height && other.y < one.y + one.height;
}

/** Whether texts that begin in a box are meant to be in it. */
bool holdsTexts(const SvgPicture::Box& box) {
  return box.cssClass == "box" || box.cssClass == "unknown" || box.cssClass == "label" ||
         box.cssClass == "even";
}

bool contains(const SvgPicture::Box& box, double x, double y) {
  return x >= box.x && x <= box.x + box.width && y >= box.y && y <= box.y + box.height;
}

bool leaves(const SvgPicture::Text& text, const SvgPicture::Box& box) {
  // What is rounded to tenths may be that much off.
  constexpr double nearly = 0.2;
  const double end = text.box.x + text.box.width - nearly;
  return holdsTexts(box) && contains(box, text.box.x + nearly, text.baseline) &&
         !contains(box, end, text.baseline);
}

}  // namespace

double widthOfLetters(std::string_view text, double size, bool bold) {
  double width = 0;
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    // What follows the first byte of a character belongs to it.
    if ((byte & 0xC0U) == 0x80U) continue;
    const std::size_t place = byte - std::size_t{' '};
    const bool known = byte >= ' ' && place < kRegular.size();
    width += known ? (bold ? kBold : kRegular)[place] : kWidest;
  }
  return width * size / 1000;
}

SvgPicture SvgPicture::read(const std::string& document) {
  std::vector<char> text(document.begin(), document.end());
  text.push_back('\0');
  rapidxml::xml_document<> parsed;
  parsed.parse<rapidxml::parse_validate_closing_tags>(text.data());
  const Node& root = *parsed.first_node("svg");
  SvgPicture picture;
  picture.width = number(root, "width");
  picture.height = number(root, "height");
  const Node* style = root.first_node("style");
  readInto(picture, root, "", style == nullptr ? "" : style->value());
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
    for (const Box& around : boxes) {
      if (leaves(texts[place], around)) found.push_back("beyond its box: " + texts[place].text);
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
