#include "host/DirectiveLines.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <utility>

#include "src/ServiceConfigurator/DirectiveTokeniser.h"

namespace zerva {
namespace {

/** Collects the lines while the file passes in pieces; a line of any length costs 511 bytes. */
class LineCollector {
 public:
  void add(char character) {
    begun_ = true;
    if (character == '\n') {
      finish();
      return;
    }
    ++length_;
    if (text_.size() < longestDirectiveLine) text_.push_back(character);
  }

  std::vector<DirectiveLine> take() {
    if (begun_) finish();
    return std::move(lines_);
  }

 private:
  void finish() {
    // The buffer that the configurator reads into is looked at as a text that ends at a zero.
    text_.resize(std::min(text_.find_first_of(std::string("\r\0", 2)), text_.size()));
    lines_.push_back({lines_.size() + 1, length_, text_, tokens()});
    text_.clear();
    length_ = 0;
    begun_ = false;
  }

  std::vector<std::string> tokens() const {
    return tokeniseDirective(text_.data(), static_cast<int>(text_.size()), " ");
  }

  std::vector<DirectiveLine> lines_;
  std::string text_;
  std::size_t length_ = 0;
  bool begun_ = false;
};

}  // namespace

std::optional<std::vector<DirectiveLine>> readDirectiveLines(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  LineCollector collector;
  std::array<char, 65536> piece;
  while (file.read(piece.data(), piece.size()), file.gcount() > 0) {
    for (std::streamsize at = 0; at < file.gcount(); ++at) {
      collector.add(piece[static_cast<std::size_t>(at)]);
    }
  }
  // The lines behind what could not be read are not known.
  if (file.bad()) return std::nullopt;
  return collector.take();
}

}  // namespace zerva
