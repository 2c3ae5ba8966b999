#include "tests/soak/Footprint.h"

#include <malloc.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace zerva {
namespace {

std::size_t entries(const char* directory) {
  return static_cast<std::size_t>(
      std::distance(std::filesystem::directory_iterator(directory), {}));
}

std::size_t lines(const char* file) {
  std::ifstream stream(file);
  return static_cast<std::size_t>(std::count(std::istreambuf_iterator<char>(stream), {}, '\n'));
}

/** Counted page by page; the quicker figures of /proc may be off by many pages a thread. */
std::size_t residentBytes() {
  std::ifstream stream("/proc/self/smaps_rollup");
  for (std::string line; std::getline(stream, line);) {
    if (line.rfind("Rss:", 0) == 0) return std::stoul(line.substr(4)) * 1024;
  }
  return 0;
}

}  // namespace

Footprint measureFootprint() {
  return {mallinfo2().uordblks, residentBytes(), entries("/proc/self/fd"),
          entries("/proc/self/task"), lines("/proc/self/maps")};
}

std::string describe(const Footprint& footprint) {
  std::ostringstream text;
  text << footprint.heap << " bytes allocated, " << footprint.resident / 1024 << " KiB resident, "
       << footprint.descriptors << " descriptors, " << footprint.threads << " threads, "
       << footprint.mappings << " mappings";
  return text.str();
}

}  // namespace zerva
