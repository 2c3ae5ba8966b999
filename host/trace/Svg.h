#pragma once

#include <string>
#include <string_view>

namespace zerva {

/** @returns a text as it may stand in an element or an attribute; what XML has no sign for becomes
 * the character that stands for such. */
std::string escapeXml(std::string_view text);

/**
 * @returns how many pixels a text is wide at most, in the letters that charts are written in and
 *     in those that are used where these are missing. Estimated: nothing here knows letters.
 */
double textWidth(std::string_view text, double size);

/** @returns the text, or as much of its beginning and its end as is not wider, with "…" between. */
std::string shortened(const std::string& text, double size, double width);

/** Where a text stands to its place. */
enum class Anchor { Start, Middle, End };

/** A picture that grows element by element; what is added later lies above. Units are pixels. */
class Svg {
 public:
  /** Opens a group whose elements show a text when the mouse is over them. */
  void beginGroup(std::string_view cssClass, std::string_view tip = {});
  void endGroup();

  void rectangle(double x, double y, double width, double height, std::string_view cssClass,
                 std::string_view tip = {}, double radius = 0);
  void line(double x1, double y1, double x2, double y2, std::string_view cssClass);
  /** @param path as the attribute has it: commands and numbers. */
  void path(std::string_view path, std::string_view cssClass, std::string_view tip = {});
  void text(double x, double y, std::string_view text, std::string_view cssClass,
            Anchor anchor = Anchor::Start);

  /**
   * @param style rules for the classes. @param definitions elements for its head, patterns say.
   * @returns the document.
   */
  std::string document(double width, double height, std::string_view title, std::string_view style,
                       std::string_view definitions) const;

  /** @returns a number as the picture has it. */
  static std::string number(double value);

 private:
  void begin(std::string_view element, std::string_view cssClass);
  void attribute(std::string_view name, double value);
  void end(std::string_view element, std::string_view tip);

  std::string body_;
};

}  // namespace zerva
