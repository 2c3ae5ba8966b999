#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/check/ProgramSearch.h"
#include "host/explain/ProgramExplanation.h"
#include "tests/host/explain/ExplainedFile.h"

namespace zerva {
namespace {

using testing::Contains;
using testing::HasSubstr;

/** What is said of a line that starts a program, which are looked for in /bin. */
class AProgram : public testing::Test {
 protected:
  LineExplanation sut(const std::string& text) {
    file = std::make_unique<ExplainedFile>(text);
    file->subject.programs = looked ? &programs : nullptr;
    return explainProgram(file->line(1), file->outlook());
  }

  const ProgramSearch programs{"", "/bin"};
  bool looked = true;
  std::unique_ptr<ExplainedFile> file;
};

TEST_F(AProgram, IsFoundInThePath) {
  const LineExplanation told = sut("start_process: sh\n");
  EXPECT_EQ(told.title, "starts the program sh");
  EXPECT_EQ(told.path, "/bin/sh");
  EXPECT_THAT(told.steps, Contains("Runs /bin/sh, and does not wait for it."));
  EXPECT_EQ(told.outcome, Outcome::Done);
}

TEST_F(AProgram, IsNamedAsItIsWrittenWhenNobodyLooks) {
  looked = false;
  EXPECT_THAT(sut("start_process: nothing-like-this\n").steps,
              Contains("Runs nothing-like-this, and does not wait for it."));
}

TEST_F(AProgram, GetsTheVersionAsItsLastArgument) {
  EXPECT_THAT(sut("start_process: sh\n").steps,
              Contains("Its only argument is the framework's version."));
  EXPECT_THAT(sut("start_process: sh -c  x\n").steps,
              Contains("Its arguments are -c x, and last the framework's version."));
}

TEST_F(AProgram, IsNotStartedWhenItIsNotThere) {
  const LineExplanation told = sut("start_process: nothing-like-this\n");
  EXPECT_EQ(told.outcome, Outcome::Failed);
  EXPECT_EQ(told.title, "does not start the program nothing-like-this");
  EXPECT_EQ(told.path, "");
}

TEST_F(AProgram, TakesAModeForItsName) {
  EXPECT_EQ(sut("start_process: MT sh a b c\n").title, "does not start the program MT");
}

TEST_F(AProgram, IsMissing) {
  const LineExplanation told = sut("start_process:\n");
  EXPECT_EQ(told.title, "starts nothing: no program is named");
  EXPECT_EQ(told.outcome, Outcome::Failed);
}

}  // namespace
}  // namespace zerva
