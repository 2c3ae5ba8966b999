// The main function of a fuzz target without a fuzzer: hands it each file of the folders that it is
// called with. What it cannot take ends the program; the last line says which file it was.

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "tests/fuzz/FuzzTarget.h"

namespace {

using std::filesystem::path;

/** A target that does not come back is ended by the signal. */
constexpr unsigned kSecondsForOne = 60;

std::vector<path> filesOf(const path& folder) {
  std::vector<path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

void replay(const path& file) {
  std::fprintf(stderr, "%s\n", file.filename().c_str());
  std::ifstream stream(file, std::ios::binary);
  // Of exactly its size, so that the address sanitizer sees whoever reads on.
  const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(stream),
                                        std::istreambuf_iterator<char>()};
  alarm(kSecondsForOne);
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
  alarm(0);
}

}  // namespace

int main(int argc, char** argv) {
  std::size_t count = 0;
  for (int at = 1; at < argc; ++at) {
    for (const path& file : filesOf(argv[at])) {
      replay(file);
      ++count;
    }
  }
  std::fprintf(stderr, "%zu files\n", count);
  return count > 0 ? 0 : 1;
}
