#include "bench/ours/TempDirectory.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace zerva::bench {

std::string makeTempDirectory() {
  std::string path = std::filesystem::temp_directory_path() / "zerva-bench-XXXXXX";
  if (::mkdtemp(path.data()) == nullptr) throw std::runtime_error("no directory can be made");
  return path;
}

}  // namespace zerva::bench
