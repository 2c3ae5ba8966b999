#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/explain/FileExplanation.h"
#include "tests/host/explain/ExplainedFile.h"

namespace zerva {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

const std::string service = "service_info: libA.so createA /a AIfc\n";

std::vector<Outcome> outcomes(const FileExplanation& file) {
  std::vector<Outcome> outcomes;
  for (const LineExplanation& line : file.lines) outcomes.push_back(line.outcome);
  return outcomes;
}

TEST(AnExplainedFile, HasEachLine) {
  const ExplainedFile file("# a\n" + service +
                           "proxy_info: libA.so createA AIfc zerva_simple_rmi\n"
                           "start_process: a\nno colon\n");
  const FileExplanation sut = explainFile(file.subject);
  EXPECT_EQ(sut.path, "a.directives");
  EXPECT_THAT(outcomes(sut), ElementsAre(Outcome::Nothing, Outcome::Done, Outcome::Done,
                                         Outcome::Done, Outcome::Failed));
  EXPECT_EQ(sut.lines.at(4).line, &file.line(5));
}

TEST(AnExplainedFile, IsNotReadBehindALineThatEndsTheStart) {
  const ExplainedFile file("start_process: MT a\n#\n" + service);
  const FileExplanation sut = explainFile(file.subject);
  EXPECT_THAT(outcomes(sut), ElementsAre(Outcome::Failed, Outcome::NotRead, Outcome::NotRead));
  EXPECT_EQ(sut.lines.at(0).title, "ends the start: MT needs four fields behind it");
  EXPECT_EQ(sut.lines.at(2).title, "is not read: line 1 ends the start");
  EXPECT_EQ(sut.end, &file.line(1));
}

TEST(AnExplainedFile, IsNotReadBehindALineThatIsTooLong) {
  const ExplainedFile file("#" + std::string(511, 'x') + "\n" + service);
  const FileExplanation sut = explainFile(file.subject);
  EXPECT_EQ(sut.lines.at(0).title, "hangs the start: it is too long");
  EXPECT_EQ(sut.lines.at(0).outcome, Outcome::Failed);
  EXPECT_EQ(sut.lines.at(1).title, "is not read: line 1 hangs the start");
}

TEST(AnExplainedFile, IsBrokenOffInALineThatIsTooLongAndHasTooFewFields) {
  const ExplainedFile file("start_process: MT " + std::string(511, 'x') + "\n" + service);
  const FileExplanation sut = explainFile(file.subject);
  EXPECT_EQ(sut.lines.at(0).title, "ends the start: MT needs four fields behind it");
  EXPECT_EQ(sut.lines.at(1).title, "is not read: line 1 ends the start");
}

TEST(AnExplainedFile, SaysOfTheLineThatEndsTheStartOnlyWhyItDoes) {
  const ExplainedFile file("service_info: libA.so createA /a " + std::string(500, 'x') + " A A\n" +
                           "service_info: libA.so createA /a AIfc AIfc\n");
  const FileExplanation sut = explainFile(file.subject);
  ASSERT_EQ(sut.lines.at(0).findings.size(), 1U);
  EXPECT_EQ(sut.lines.at(0).findings.front().code, "line-too-long");
  EXPECT_TRUE(sut.lines.at(1).findings.empty());
}

TEST(AnExplainedFile, HasWhatTheLookOverFindsAtItsLines) {
  const ExplainedFile file(service + service);
  const FileExplanation sut = explainFile(file.subject);
  EXPECT_TRUE(sut.lines.at(0).findings.empty());
  ASSERT_EQ(sut.lines.at(1).findings.size(), 2U);
  EXPECT_EQ(sut.lines.at(1).findings.at(0).code, "channel-twice");
  EXPECT_EQ(sut.lines.at(1).findings.at(1).code, "interface-twice");
  // The first of the two is an error.
  EXPECT_EQ(sut.lines.at(1).outcome, Outcome::Failed);
}

TEST(AnExplainedFile, DoesWhatItAsksForWhereThereAreOnlyWarnings) {
  const ExplainedFile file("service_legacy: ST libA.so createA AIfc BIfc\n");
  const FileExplanation sut = explainFile(file.subject);
  EXPECT_EQ(sut.lines.at(0).findings.size(), 1U);
  EXPECT_EQ(sut.lines.at(0).outcome, Outcome::Done);
}

TEST(AnExplainedFile, NeedsARegistryElsewhereWhenSomethingIsToldAndNoLineHasOne) {
  EXPECT_TRUE(explainFile(ExplainedFile(service).subject).registryElsewhere);
  EXPECT_FALSE(explainFile(ExplainedFile("service_legacy: libA.so createA AIfc\n").subject)
                   .registryElsewhere);
  EXPECT_FALSE(explainFile(ExplainedFile("service_info: libA.so\n").subject).registryElsewhere);
  EXPECT_FALSE(explainFile(ExplainedFile("service_info: libR.so createR /zerva/serviceregistry "
                                         "ServiceRegistryIfc\n")
                               .subject)
                   .registryElsewhere);
}

TEST(AnOutcome, HasANameForPrograms) {
  EXPECT_STREQ(outcomeName(Outcome::Done), "done");
  EXPECT_STREQ(outcomeName(Outcome::Nothing), "nothing");
  EXPECT_STREQ(outcomeName(Outcome::Failed), "failed");
  EXPECT_STREQ(outcomeName(Outcome::NotRead), "not_read");
}

}  // namespace
}  // namespace zerva
