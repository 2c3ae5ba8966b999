#include "tests/soak/Footprint.h"

#include <malloc.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace zerva {
namespace {

std::size_t lines(const std::string& file) {
  std::ifstream stream(file);
  return static_cast<std::size_t>(std::count(std::istreambuf_iterator<char>(stream), {}, '\n'));
}

/** Counted page by page; the quicker figures of /proc may be off by many pages a thread. */
std::size_t residentBytes(const std::string& process) {
  std::ifstream stream(process + "/smaps_rollup");
  for (std::string line; std::getline(stream, line);) {
    if (line.rfind("Rss:", 0) == 0) return std::stoul(line.substr(4)) * 1024;
  }
  return 0;
}

Footprint measure(const std::string& process, std::size_t heap) {
  return {heap, residentBytes(process), entriesOf(process + "/fd"), entriesOf(process + "/task"),
          lines(process + "/maps")};
}

}  // namespace

Footprint measureFootprint() { return measure("/proc/self", mallinfo2().uordblks); }

Footprint measureFootprintOf(int process) { return measure("/proc/" + std::to_string(process), 0); }

std::size_t entriesOf(const std::string& directory) {
  return static_cast<std::size_t>(
      std::distance(std::filesystem::directory_iterator(directory), {}));
}

std::string describe(const Footprint& footprint) {
  std::ostringstream text;
  text << footprint.heap << " bytes allocated, " << footprint.resident / 1024 << " KiB resident, "
       << footprint.descriptors << " descriptors, " << footprint.threads << " threads, "
       << footprint.mappings << " mappings";
  return text.str();
}

}  // namespace zerva
