#include <gtest/gtest.h>

#include "host/explain/SkippedExplanation.h"
#include "tests/host/explain/ExplainedFile.h"

namespace zerva {
namespace {

LineExplanation sut(const std::string& text) {
  static std::vector<std::unique_ptr<ExplainedFile>> files;
  files.push_back(std::make_unique<ExplainedFile>(text));
  return explainSkipped(files.back()->line(1));
}

TEST(ALineThatAsksForNothing, IsAComment) {
  for (const char* text : {"# a: b\n", "   #\n", "comment: words\n"}) {
    EXPECT_EQ(sut(text).title, "is a comment") << text;
    EXPECT_EQ(sut(text).outcome, Outcome::Nothing) << text;
  }
}

TEST(ALineThatAsksForNothing, IsEmpty) {
  for (const char* text : {"\n", " \t \n", "\r\n", "\rrest\n"}) {
    EXPECT_EQ(sut(text).title, "is empty") << text;
    EXPECT_EQ(sut(text).outcome, Outcome::Nothing) << text;
  }
}

TEST(ALineWithoutAColon, IsSkippedSilently) {
  EXPECT_EQ(sut("service_info libA.so\n").title, "is skipped: it has no colon");
  EXPECT_EQ(sut("service_info libA.so\n").outcome, Outcome::Failed);
}

TEST(ALineWithAnUnknownKeyword, IsSkippedWithAnError) {
  EXPECT_EQ(sut("service_info : libA.so\n").title, "is skipped: nobody knows its keyword");
  EXPECT_EQ(sut(":\n").outcome, Outcome::Failed);
}

}  // namespace
}  // namespace zerva
