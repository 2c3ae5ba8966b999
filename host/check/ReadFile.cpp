#include "host/check/ReadFile.h"

#include <sys/stat.h>

#include <fstream>

namespace zerva {
namespace {

std::string kindOfFile(mode_t mode) {
  if (S_ISDIR(mode)) return "a directory";
  if (S_ISFIFO(mode)) return "a pipe";
  if (S_ISSOCK(mode)) return "a socket";
  return "a device";
}

}  // namespace

std::optional<CheckedFile> readCheckedFile(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  if (!S_ISREG(status.st_mode)) {
    return CheckedFile{
        path, "this is " + kindOfFile(status.st_mode) + "; only a regular file can be read.", {}};
  }
  const auto lines = readDirectiveLines(path);
  if (!lines && !std::ifstream(path)) return std::nullopt;
  CheckedFile file{path, "", {}};
  if (!lines) file.unreadable = "it can be opened but not read, and reading it would never end.";
  for (const DirectiveLine& line : lines.value_or(std::vector<DirectiveLine>())) {
    file.lines.emplace_back(line);
  }
  return file;
}

}  // namespace zerva
