#include "host/skeleton/Skeleton.h"

#include <fstream>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "framework/ZervaVersion.h"
#include "host/skeleton/EmbeddedFiles.h"

namespace zerva {
namespace {

namespace fs = std::filesystem;

/** The name by which a program of this word size is built and called. */
constexpr bool is32Bit = sizeof(void*) == 4;

/** Puts the values in for the names between @ signs; others stay, they are for CMake. */
std::string filledIn(std::string text, const std::string& name) {
  const std::pair<std::string, std::string> values[] = {
      {"@NAME@", name},
      {"@VERSION@", ZervaVersion()},
      {" @CMAKE_OPTIONS@", is32Bit ? " -D CMAKE_CXX_FLAGS=-m32" : ""},
      {"@PROGRAM@", is32Bit ? "zerva32" : "zerva64"},
  };
  for (const auto& [placeholder, value] : values) {
    std::size_t at = 0;
    while ((at = text.find(placeholder, at)) != std::string::npos) {
      text.replace(at, placeholder.size(), value);
      at += value.size();
    }
  }
  return text;
}

void writeFile(const fs::path& path, const std::string& text) {
  fs::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  file << text;
  file.close();
  if (!file) throw std::runtime_error(path.string() + " cannot be written");
}

/** Removes the folder again unless everything went well. */
class NewFolder {
 public:
  explicit NewFolder(const fs::path& path) : path_(path) {
    std::error_code error;
    if (fs::symlink_status(path).type() != fs::file_type::not_found) {
      throw std::runtime_error(path.string() + " is there already");
    }
    if (!fs::create_directory(path, error)) {
      throw std::runtime_error(
          path.string() + " cannot be made: " + (error ? error.message() : "it is there already"));
    }
  }
  ~NewFolder() {
    std::error_code ignored;
    if (!complete_) fs::remove_all(path_, ignored);
  }
  NewFolder(const NewFolder&) = delete;
  NewFolder& operator=(const NewFolder&) = delete;

  void complete() { complete_ = true; }

 private:
  const fs::path path_;
  bool complete_ = false;
};

}  // namespace

std::vector<std::string> writeSkeleton(const fs::path& folder, const std::string& name) {
  std::vector<std::string> written;
  NewFolder made(folder);
  for (const EmbeddedFile& file : embeddedFiles()) {
    const std::string path = filledIn(fs::path(file.path).replace_extension().string(), name);
    writeFile(folder / path, filledIn(file.text, name));
    written.push_back(path);
  }
  made.complete();
  return written;
}

}  // namespace zerva
