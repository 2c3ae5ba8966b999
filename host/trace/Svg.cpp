#include "host/trace/Svg.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <vector>

#include "runtime/libClientUtils/trace/JsonText.h"

namespace zerva {
namespace {

/** @returns the beginnings of the characters of a text, and its end. */
std::vector<std::size_t> charactersOf(std::string_view text) {
  std::vector<std::size_t> starts;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if ((static_cast<unsigned char>(text[at]) & 0xC0U) != 0x80U) starts.push_back(at);
  }
  starts.push_back(text.size());
  return starts;
}

/** Of the size of the letters, those of the widest usual ones. */
double widthOf(char first) {
  constexpr std::string_view narrow = " !'(),./:;I[]fijlrt|-";
  constexpr std::string_view wide = "mwMW%@&#^+<=>~";
  const auto byte = static_cast<unsigned char>(first);
  // What XML has no sign for is shown as the character that stands for such.
  if (byte >= 0x80 || byte < 0x20) return 1.0;
  if (narrow.find(first) != std::string_view::npos) return 0.43;
  if (wide.find(first) != std::string_view::npos) return 1.0;
  if (first >= 'A' && first <= 'Z') return 0.79;
  return 0.65;
}

/** U+FFFE and U+FFFF are characters elsewhere. */
bool isNoCharacterOfXml(std::string_view text, std::size_t at) {
  const std::string_view three = text.substr(at, 3);
  return three == "\xEF\xBF\xBE" || three == "\xEF\xBF\xBF";
}

}  // namespace

std::string escapeXml(std::string_view text) {
  std::string escaped;
  const std::string valid = validUtf8(text);
  for (std::size_t at = 0; at < valid.size(); ++at) {
    const char character = valid[at];
    const auto byte = static_cast<unsigned char>(character);
    if (isNoCharacterOfXml(valid, at)) {
      escaped += "\xEF\xBF\xBD";
      at += 2;
    } else if (character == '&') {
      escaped += "&amp;";
    } else if (character == '<') {
      escaped += "&lt;";
    } else if (character == '>') {
      escaped += "&gt;";
    } else if (character == '"') {
      escaped += "&quot;";
    } else if (byte < 0x20 && character != '\n' && character != '\t') {
      escaped += "\xEF\xBF\xBD";
    } else {
      escaped += character;
    }
  }
  return escaped;
}

double textWidth(std::string_view text, double size) {
  double width = 0;
  const std::vector<std::size_t> starts = charactersOf(text);
  for (std::size_t place = 0; place + 1 < starts.size(); ++place) {
    width += widthOf(text[starts[place]]);
  }
  return width * size;
}

std::string shortened(const std::string& text, double size, double width) {
  const std::string valid = validUtf8(text);
  if (textWidth(valid, size) <= width) return valid;
  constexpr std::string_view between = "\xE2\x80\xA6";
  double left = width / size - widthOf(between.front());
  if (left < 0) return {};
  // Characters of the beginning and of the end, in turn, as long as there is room.
  const std::vector<std::size_t> starts = charactersOf(valid);
  std::size_t begin = 0;
  std::size_t end = starts.size() - 1;
  for (bool atBegin = true; begin < end; atBegin = !atBegin) {
    left -= widthOf(valid[starts[atBegin ? begin : end - 1]]);
    if (left < 0) break;
    atBegin ? ++begin : --end;
  }
  std::string cut = valid.substr(0, starts[begin]);
  cut += between;
  return cut.append(valid, starts[end]);
}

void Svg::beginGroup(std::string_view cssClass, std::string_view tip) {
  body_ += "<g class=\"" + escapeXml(cssClass) + "\">";
  if (!tip.empty()) body_ += "<title>" + escapeXml(tip) + "</title>";
  body_ += '\n';
}

void Svg::endGroup() { body_ += "</g>\n"; }

void Svg::rectangle(double x, double y, double width, double height, std::string_view cssClass,
                    std::string_view tip, double radius) {
  begin("rect", cssClass);
  attribute("x", x);
  attribute("y", y);
  attribute("width", width);
  attribute("height", height);
  if (radius > 0) attribute("rx", radius);
  end("rect", tip);
}

void Svg::line(double x1, double y1, double x2, double y2, std::string_view cssClass) {
  begin("line", cssClass);
  attribute("x1", x1);
  attribute("y1", y1);
  attribute("x2", x2);
  attribute("y2", y2);
  end("line", {});
}

void Svg::path(std::string_view path, std::string_view cssClass, std::string_view tip) {
  begin("path", cssClass);
  body_ += " d=\"" + escapeXml(path) + "\"";
  end("path", tip);
}

void Svg::text(double x, double y, std::string_view text, std::string_view cssClass,
               Anchor anchor) {
  begin("text", cssClass);
  attribute("x", x);
  attribute("y", y);
  if (anchor != Anchor::Start) {
    body_ += anchor == Anchor::Middle ? " text-anchor=\"middle\"" : " text-anchor=\"end\"";
  }
  body_ += ">" + escapeXml(text) + "</text>\n";
}

std::string Svg::document(double width, double height, std::string_view title,
                          std::string_view style, std::string_view definitions) const {
  const std::string size = "width=\"" + number(width) + "\" height=\"" + number(height) + "\"";
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<svg xmlns=\"http://www.w3.org/2000/svg\" " +
         size + " viewBox=\"0 0 " + number(width) + " " + number(height) + "\">\n<title>" +
         escapeXml(title) + "</title>\n<style>" + std::string(style) + "</style>\n<defs>" +
         std::string(definitions) + "</defs>\n<rect class=\"paper\" " + size + "/>\n" + body_ +
         "</svg>\n";
}

std::string Svg::number(double value) {
  std::array<char, 40> text{};
  // What lies half way between two tenths goes up, however the processor rounds what led to it.
  constexpr double kNearly = 1e-6;
  const double tenths = std::floor(value * 10 + 0.5 + kNearly);
  const int length = std::snprintf(text.data(), text.size(), "%.1f", tenths / 10);
  std::string number(text.data(), static_cast<std::size_t>(length));
  if (number.ends_with(".0")) number.resize(number.size() - 2);
  return number == "-0" ? "0" : number;
}

void Svg::begin(std::string_view element, std::string_view cssClass) {
  body_ += "<" + std::string(element) + " class=\"" + escapeXml(cssClass) + "\"";
}

void Svg::attribute(std::string_view name, double value) {
  body_ += " " + std::string(name) + "=\"" + number(value) + "\"";
}

void Svg::end(std::string_view element, std::string_view tip) {
  if (tip.empty()) {
    body_ += "/>\n";
    return;
  }
  body_ += "><title>" + escapeXml(tip) + "</title></" + std::string(element) + ">\n";
}

}  // namespace zerva
