#pragma once

#include <filesystem>
#include <string>

namespace zerva {

/** The directory of the build's programs, where this one is. */
inline std::filesystem::path programDirectory() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

/** The directory of the build's libraries, those that tests open included. */
inline std::filesystem::path libraryDirectory() { return programDirectory().parent_path() / "lib"; }

}  // namespace zerva
