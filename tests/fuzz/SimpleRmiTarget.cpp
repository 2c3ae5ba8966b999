// Input: as `checkCallBytes` takes it, in the compact protocol.

#include "runtime/libClientUtils/protocols/SimpleRmiAdapter.h"
#include "tests/fuzz/CallBytes.h"
#include "tests/fuzz/FuzzTarget.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zerva::SimpleRmiAdapter adapter;
  zerva::fuzz::checkCallBytes(adapter, zerva::fuzz::textOf(data, size));
  return 0;
}
