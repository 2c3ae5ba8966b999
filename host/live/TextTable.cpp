#include "host/live/TextTable.h"

#include <algorithm>
#include <cstddef>

namespace zerva {
namespace {

/** @returns how many characters a text in UTF-8 has. */
std::size_t lengthOf(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
  }));
}

}  // namespace

std::string TextTable::text() const {
  std::vector<std::size_t> widths;
  for (const Line& line : lines_) {
    widths.resize(std::max(widths.size(), line.cells.size()));
    for (std::size_t cell = 0; cell < line.cells.size(); ++cell) {
      widths[cell] = std::max(widths[cell], lengthOf(line.cells[cell]));
    }
  }
  std::string all;
  for (const Line& line : lines_) {
    std::string text = "  ";
    for (std::size_t cell = 0; cell < line.cells.size(); ++cell) {
      text += line.cells[cell];
      text.append(widths[cell] - lengthOf(line.cells[cell]) + 2, ' ');
    }
    all += text.substr(0, text.find_last_not_of(' ') + 1) + "\n";
    for (const std::string& remark : line.remarks) all += "    " + remark + "\n";
  }
  return all;
}

std::string printable(std::string text) {
  for (char& byte : text) {
    if (static_cast<unsigned char>(byte) < ' ' || byte == '\x7f') byte = '?';
  }
  return text;
}

}  // namespace zerva
