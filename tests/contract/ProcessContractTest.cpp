#include <unistd.h>

#include "framework/OSWrappers.h"
#include "framework/Process.h"
#include "tests/contract/ContractTest.h"

namespace {

class AProcess : public ContractTest {
 protected:
  static int start(const std::string& program) {
    std::string text = program;
    char* argv[] = {text.data(), nullptr};
    Process sut(1, argv, environ, nullptr);
    return sut.ID();
  }
};

TEST_F(AProcess, ThatRuns_HasAnIdGreaterThanZero) {
  zerva::contract::programExists("/bin/true");
  EXPECT_GT(start("/bin/true"), 0);
}

TEST_F(AProcess, ThatCouldNotBeStarted_HasNone) {
  zerva::contract::programIsMissing("/no/such/program");
  EXPECT_LE(start("/no/such/program"), 0);
}

TEST_F(AProcess, HasThreadsWithIdsGreaterThanZero) { EXPECT_GT(OSWrappers::curID(), 0); }

}  // namespace
