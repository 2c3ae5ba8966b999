#include <gtest/gtest.h>

#include <new>
#include <string>

#include "src/ServiceConfigurator/LineNormaliser.h"
#include "tests/support/NoMemory.h"

namespace zerva {
namespace {

// The words came from a stream that ended where one had no memory. What was left of a reply of the
// registry was a reply of another kind, and a service was "not found" of which no line told.
TEST(ALineWithoutMemory, IsNotCutShort) {
  const std::string line = "found_proxy:libAVeryLongNameOfALibrary.so,createAProxyOfAVeryLongName";
  int failures = 0;
  for (int nth = 1;; ++nth) {
    std::string text = line;
    letAllocationFail(nth);
    try {
      normaliseLine(text);
    } catch (const std::bad_alloc&) {
      ++failures;
    }
    EXPECT_EQ(text, line) << "allocation " << nth;
    if (allocationIsToFail()) break;
  }
  letAllocationFail(0);
  EXPECT_GT(failures, 1);
}

}  // namespace
}  // namespace zerva
