#include "bench/ours/Footprint.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "bench/ours/Libraries.h"

namespace zerva::bench {

namespace {

/** Whether a line begins a mapping, as those that tell of its sizes do not. */
bool beginsMapping(const std::string& line) {
  const std::size_t dash = line.find('-');
  return dash != std::string::npos && dash < line.find(' ');
}

}  // namespace

std::size_t residentBytes() {
  const std::string copies = copiesDirectory();
  std::ifstream maps("/proc/self/smaps");
  std::size_t kibibytes = 0;
  bool counted = false;
  for (std::string line; std::getline(maps, line);) {
    if (beginsMapping(line)) counted = line.find(copies) == std::string::npos;
    if (counted && line.rfind("Rss:", 0) == 0) kibibytes += std::stoul(line.substr(4));
  }
  return kibibytes * 1024;
}

std::size_t mappedCopies() {
  const std::string copies = copiesDirectory();
  std::ifstream maps("/proc/self/maps");
  std::size_t count = 0;
  for (std::string line; std::getline(maps, line);) {
    if (line.find(copies) != std::string::npos) ++count;
  }
  return count;
}

std::size_t threads() {
  return static_cast<std::size_t>(
      std::distance(std::filesystem::directory_iterator("/proc/self/task"), {}));
}

}  // namespace zerva::bench
