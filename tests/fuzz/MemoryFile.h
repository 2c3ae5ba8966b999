#pragma once

#include <string>
#include <string_view>

namespace zerva::fuzz {

/** A file that is in memory only, and has a path all the same. */
class MemoryFile {
 public:
  explicit MemoryFile(std::string_view bytes);
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
};

}  // namespace zerva::fuzz
