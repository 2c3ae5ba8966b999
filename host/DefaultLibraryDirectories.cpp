#include "host/DefaultLibraryDirectories.h"

#include <filesystem>

namespace zerva {

std::vector<std::string> defaultLibraryDirectories() {
  std::error_code error;
  const auto executable = std::filesystem::read_symlink("/proc/self/exe", error);
  const auto directory = executable.parent_path().parent_path() / "lib";
  if (error || !std::filesystem::is_directory(directory, error)) return {};
  return {directory.string()};
}

}  // namespace zerva
