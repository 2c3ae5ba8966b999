#include "tests/fuzz/MemoryFile.h"

#include <sys/mman.h>
#include <unistd.h>

#include "tests/fuzz/FuzzTarget.h"

namespace zerva::fuzz {

MemoryFile::MemoryFile(std::string_view bytes) : descriptor_(memfd_create("directives", 0)) {
  require(descriptor_ >= 0, "there is a file");
  require(write(descriptor_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()),
          "the file can be written");
}

MemoryFile::~MemoryFile() { close(descriptor_); }

}  // namespace zerva::fuzz
