#include "tests/support/FileText.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace zerva {

std::filesystem::path writeFile(const std::filesystem::path& file, std::string_view text) {
  std::ofstream stream{file, std::ios::binary | std::ios::trunc};
  stream.write(text.data(), static_cast<std::streamsize>(text.size()));
  stream.close();
  if (!stream) throw std::runtime_error{"cannot write " + file.string()};
  return file;
}

std::string readFile(const std::filesystem::path& file) {
  std::ifstream stream{file, std::ios::binary};
  if (!stream) throw std::runtime_error{"cannot read " + file.string()};
  std::ostringstream text;
  // An empty file sets the fail bit of the target here, which is no failure to read.
  text << stream.rdbuf();
  return text.str();
}

}  // namespace zerva
