// Input: a library, or the loader's cache.

#include <string>

#include "host/check/ElfFile.h"
#include "host/check/LoaderDirectories.h"
#include "tests/fuzz/FuzzTarget.h"

using namespace zerva;
using namespace zerva::fuzz;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(textOf(data, size));
  const auto content = readElf(bytes);
  if (const auto* error = std::get_if<ElfError>(&content)) {
    require(!error->text.empty(), "an error says what is wrong");
  } else {
    const auto& file = std::get<ElfFile>(content);
    require(file.kind.bits == 32 || file.kind.bits == 64, "a library has a word size");
    for (const auto& [name, isFunction] : file.exported) {
      require(name.size() < bytes.size(), "a name is part of its file");
    }
  }
  for (const auto& [name, path] : readLoaderCache(bytes)) {
    require(name.size() < bytes.size() && path.size() < bytes.size(), "a name is part of its file");
  }
  return 0;
}
