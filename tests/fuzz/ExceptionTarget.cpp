// Input: the bytes of an exception, as an error reply has them.

#include <cstring>
#include <string>

#include "framework/ZervaException.h"
#include "tests/fuzz/FuzzTarget.h"

using namespace zerva;
using namespace zerva::fuzz;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(textOf(data, size));
  const ZervaException before("before");
  ZervaException exception(before);
  if (!exception.deserialize(bytes)) {
    require(std::strcmp(exception.what(), "before") == 0, "what is refused changes nothing");
    return 0;
  }
  require(std::strcmp(before.what(), "before") == 0, "copies are not changed with it");
  require(exception.serialize() == bytes, "an exception has one form");
  require(bytes.find(exception.what()) != std::string::npos, "the text comes from the bytes");
  return 0;
}
