#include <gtest/gtest.h>

#include "host/explain/RegistryWords.h"
#include "tests/host/explain/ExplainedFile.h"

namespace zerva {
namespace {

using Where = RegistryAhead::Where;

const ExplainedFile file(
    "\nservice_info: libR.so createR /zerva/serviceregistry ServiceRegistryIfc\n");

TEST(TheRegistry, IsThatOfALine) {
  EXPECT_EQ(registryWords({Where::Here, &file.line(2)}), "the registry (line 2)");
}

TEST(TheRegistry, IsThatOfAnotherProcess) {
  EXPECT_EQ(registryWords({Where::Elsewhere, nullptr}),
            "the registry of another process, which has to be there by then");
}

TEST(TheRegistry, ComesTooLateOrNotAtAll) {
  EXPECT_EQ(noRegistryWords({Where::Later, &file.line(2)}), "the registry comes in line 2 only");
  EXPECT_EQ(noRegistryWords({Where::Failed, &file.line(2)}),
            "the registry of line 2 does not come up");
}

}  // namespace
}  // namespace zerva
