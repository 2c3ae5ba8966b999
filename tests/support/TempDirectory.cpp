#include "tests/support/TempDirectory.h"

#include <cstdlib>
#include <stdexcept>
#include <system_error>

#include "tests/support/FileText.h"

namespace zerva {

TempDirectory::TempDirectory() {
  std::string name = (std::filesystem::temp_directory_path() / "zerva-test-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error{"cannot make " + name};
  directory = name;
}

TempDirectory::~TempDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(directory, ignored);
}

std::filesystem::path TempDirectory::write(std::string_view name, std::string_view text) const {
  return writeFile(file(name), text);
}

}  // namespace zerva
