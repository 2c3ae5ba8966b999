#include <gtest/gtest.h>

#include "host/explain/ExplanationSum.h"
#include "host/explain/FileExplanation.h"
#include "tests/host/explain/ExplainedFile.h"

namespace zerva {
namespace {

ExplanationSum sut(const std::string& text) {
  const ExplainedFile file(text);
  return sumOf(explainFile(file.subject).lines);
}

TEST(TheSum, CountsEachKindOfLine) {
  const ExplanationSum sum =
      sut("# a\n"
          "service_instance: libA.so createA /a AIfc\n"
          "service_info: libA.so createA /b BIfc\n"
          "service_info: libA.so createA /c CIfc\n"
          "service_legacy: libA.so createA LIfc\n"
          "proxy_info: libX.so createX DIfc zerva_simple_rmi\n"
          "start_process: a\n");
  EXPECT_EQ(sum.immediate, 1U);
  EXPECT_EQ(sum.lazy, 2U);
  EXPECT_EQ(sum.legacy, 1U);
  EXPECT_EQ(sum.services(), 4U);
  EXPECT_EQ(sum.records, 1U);
  EXPECT_EQ(sum.programs, 1U);
  EXPECT_TRUE(sum.isGood());
}

TEST(TheSum, DoesNotCountWhatFails) {
  const ExplanationSum sum = sut("service_info: libA.so\nno colon\n");
  EXPECT_EQ(sum.services(), 0U);
  EXPECT_EQ(sum.failed, 2U);
  EXPECT_FALSE(sum.isGood());
}

TEST(TheSum, CountsWhatIsNotReadWhenItAsksForSomething) {
  const ExplanationSum sum =
      sut("start_process: MT a\n# a\nno colon\n"
          "service_info: libA.so createA /a AIfc\n");
  EXPECT_EQ(sum.notRead, 1U);
  EXPECT_EQ(sum.lazy, 0U);
}

TEST(TheSum, IsNotGoodForALineThatIsNotRead) {
  const ExplainedFile file("start_process: MT a\nstart_process: b\n");
  EXPECT_FALSE(sumOf({explainFile(file.subject).lines.at(1)}).isGood());
}

}  // namespace
}  // namespace zerva
