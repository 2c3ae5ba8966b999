#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/explain/Selection.h"
#include "tests/host/explain/ExplainedFile.h"

namespace zerva {
namespace {

using testing::ElementsAre;

const ExplainedFile file(
    "# AIfc: a comment\n"
    "service_info: /opt/libA.so createA /a AIfc BIfc\n"
    "proxy_info: libX.so createX AIfc zerva_simple_rmi\n"
    "service_legacy: libA.so createL LIfc\n"
    "start_process: /bin/true AIfc\n"
    "AIfc: unknown\n");

std::vector<std::size_t> sut(const std::string& wanted) {
  const auto selected = selectLines(explainFile(file.subject), wanted);
  std::vector<std::size_t> numbers;
  for (const LineExplanation& line : std::get<std::vector<LineExplanation>>(selected)) {
    numbers.push_back(line.line->number());
  }
  return numbers;
}

std::string refused(const std::string& wanted) {
  return std::get<std::string>(selectLines(explainFile(file.subject), wanted));
}

TEST(TheSelection, IsAllLinesWhenNothingIsAskedFor) {
  EXPECT_THAT(sut(""), ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST(TheSelection, IsALineByItsNumber) {
  EXPECT_THAT(sut("1"), ElementsAre(1));
  EXPECT_THAT(sut("005"), ElementsAre(5));
}

TEST(TheSelection, IsTheServicesAndRecordsOfAnInterface) {
  EXPECT_THAT(sut("AIfc"), ElementsAre(2, 3));
  EXPECT_THAT(sut("BIfc"), ElementsAre(2));
  EXPECT_THAT(sut("LIfc"), ElementsAre(4));
}

TEST(TheSelection, IsTheServiceOfAChannel) { EXPECT_THAT(sut("/a"), ElementsAre(2)); }

TEST(TheSelection, IsTheLinesOfALibraryWithOrWithoutItsDirectory) {
  EXPECT_THAT(sut("libA.so"), ElementsAre(2, 4));
  EXPECT_THAT(sut("/opt/libA.so"), ElementsAre(2));
}

TEST(TheSelection, IsTheLinesOfTheFileThatIsFound) {
  ExplainedFile found("service_info: libA.so createA /a AIfc\n");
  found.library(1);
  const FileExplanation explained = explainFile(found.subject);
  EXPECT_EQ(std::get<0>(selectLines(explained, "lib/libA.so")).size(), 1U);
}

TEST(TheSelection, IsTheLinesOfACreator) { EXPECT_THAT(sut("createX"), ElementsAre(3)); }

TEST(TheSelection, IsTheLinesOfAProgram) {
  EXPECT_THAT(sut("true"), ElementsAre(5));
  EXPECT_THAT(sut("/bin/true"), ElementsAre(5));
}

TEST(TheSelection, RefusesANumberThatNoLineHas) {
  EXPECT_EQ(refused("7"), "a.directives has 6 lines, and no line 7.");
  EXPECT_EQ(refused("0"), "a.directives has 6 lines, and no line 0.");
  EXPECT_EQ(refused("99999999999999999999999"),
            "a.directives has 6 lines, and no line 99999999999999999999999.");
}

TEST(TheSelection, RefusesANameThatNothingHas) {
  EXPECT_EQ(refused("Elsewhere"), "nothing in a.directives is called 'Elsewhere'.");
  EXPECT_EQ(refused("aifc2"), "nothing in a.directives is called 'aifc2'. Did you mean 'AIfc'?");
}

}  // namespace
}  // namespace zerva
