#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace zerva {

/** A new, empty directory of a test's own, removed with all that is in it at the end. */
class TempDirectory {
 public:
  /** @throws std::runtime_error when the directory cannot be made. */
  TempDirectory();
  TempDirectory(const TempDirectory&) = delete;
  TempDirectory& operator=(const TempDirectory&) = delete;
  /** Removes it; what cannot be removed stays. */
  ~TempDirectory();

  /** The directory's absolute path. */
  const std::filesystem::path& path() const { return directory; }

  /** The path that a file of this name has in the directory; makes nothing. */
  std::filesystem::path file(std::string_view name) const { return directory / name; }

  /**
   * Writes a file into the directory.
   *
   * @returns The file's absolute path.
   * @throws std::runtime_error when it cannot be written.
   */
  std::filesystem::path write(std::string_view name, std::string_view text) const;

 private:
  std::filesystem::path directory;
};

}  // namespace zerva
