#pragma once

#include <string>
#include <utility>
#include <vector>

namespace zerva {

/** Lines whose cells stand below each other. */
class TextTable {
 public:
  /** @param header the first line. */
  explicit TextTable(std::vector<std::string> header) : lines_{{std::move(header), {}}} {}

  /** Adds a line of cells. */
  void add(std::vector<std::string> cells) { lines_.push_back({std::move(cells), {}}); }

  /** Adds a line of its own below the last one. */
  void remark(std::string text) { lines_.back().remarks.push_back(std::move(text)); }

  /** @returns all lines, each with a line end and indented by two blanks. */
  std::string text() const;

 private:
  struct Line {
    std::vector<std::string> cells;
    std::vector<std::string> remarks;
  };
  std::vector<Line> lines_;
};

/** @returns the text as a terminal can be given it: without control characters. */
std::string printable(std::string text);

}  // namespace zerva
