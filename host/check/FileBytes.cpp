#include "host/check/FileBytes.h"

#include <sys/stat.h>

#include <fstream>

namespace zerva {
namespace {

constexpr std::streamsize mostBytes = 512 << 20;

}  // namespace

std::optional<std::string> bytesOf(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  if (status.st_size > mostBytes) return std::nullopt;
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (file.bad()) return std::nullopt;
  bytes.resize(static_cast<std::size_t>(file.gcount()));
  return bytes;
}

}  // namespace zerva
