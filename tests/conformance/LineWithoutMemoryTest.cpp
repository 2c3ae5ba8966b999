#include <gtest/gtest.h>

#include <new>
#include <string>

#include "src/ServiceConfigurator/DirectiveTokeniser.h"
#include "tests/support/NoMemory.h"

namespace zerva {
namespace {

// The words once came from a stream that ended where one had no memory. What was left of a reply of
// the registry was a reply of another kind, and a service was "not found" of which no line told.
TEST(ALineWithoutMemory, IsNotCutShort) {
  const std::string line = "found_proxy: libAVeryLongNameOfALibrary.so,createAProxyOfAVeryLongName";
  const auto tokens = [&] {
    return tokeniseDirective(line.c_str(), static_cast<int>(line.size()), ",");
  };
  const auto whole = tokens();
  int failures = 0;
  for (int nth = 1;; ++nth) {
    letAllocationFail(nth);
    try {
      const auto got = tokens();
      const bool untouched = allocationIsToFail();
      letAllocationFail(0);
      EXPECT_EQ(got, whole) << "allocation " << nth;
      if (untouched) break;
    } catch (const std::bad_alloc&) {
      ++failures;
    }
  }
  letAllocationFail(0);
  EXPECT_GT(failures, 1);
}

}  // namespace
}  // namespace zerva
