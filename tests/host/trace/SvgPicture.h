#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zerva {

/** An SVG picture, read back: its texts and boxes. */
struct SvgPicture {
  struct Box {
    std::string cssClass;
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    /** The class of the group that it is in. */
    std::string group = {};
  };
  struct Text {
    std::string text;
    std::string cssClass;
    /** What it covers, as wide as it may be in any letters. */
    Box box;
    /** Where its letters stand. */
    double baseline = 0;
    /** The class of the group that it is in. */
    std::string group;
  };

  double width = 0;
  double height = 0;
  std::vector<Text> texts;
  std::vector<Box> boxes;

  /** @throws std::exception when the document is not well-formed. */
  static SvgPicture read(const std::string& document);

  /** @returns the texts of one class. */
  std::vector<std::string> textsOf(const std::string& cssClass) const;

  /**
   * @returns what does not fit: texts beyond the edge or the box in which they begin, and texts
   * that lie on others.
   */
  std::vector<std::string> misfits() const;
};

/**
 * @returns how many pixels a text is wide in the letters that charts are written in, DejaVu Sans,
 * by the widths that are in its files.
 */
double widthOfLetters(std::string_view text, double size, bool bold);

}  // namespace zerva
