#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "host/check/CheckReport.h"

namespace zerva {
namespace {

using testing::HasSubstr;
using testing::Not;

Finding finding() {
  return {"a.directives", 3, 6, "something is wrong.", 4, Severity::Warning, "some-code", {}};
}

std::string withCarets(const Finding& finding, const std::string& line) {
  return reportAsText({finding}, {{{"a.directives", 3}, line}}, {true, false});
}

TEST(AReport, HasFileLineColumnSeverityTextAndCode) {
  EXPECT_EQ(reportAsText({finding()}, {}, {}),
            "a.directives:3:6: warning: something is wrong. [some-code]\n1 warning\n");
}

TEST(AReport, OfNothingIsEmpty) { EXPECT_EQ(reportAsText({}, {}, {}), ""); }

TEST(AReport, CountsEachSeverityAtItsEnd) {
  Finding error = finding();
  error.severity = Severity::Error;
  EXPECT_THAT(reportAsText({finding(), error, finding()}, {}, {}),
              testing::EndsWith("\n1 error, 2 warnings\n"));
}

TEST(AReport, AsksWhetherSomethingElseWasMeant) {
  Finding sut = finding();
  sut.suggestion = "right";
  EXPECT_THAT(reportAsText({sut}, {}, {}),
              HasSubstr("something is wrong. Did you mean 'right'? [some-code]"));
}

TEST(AReport, MarksWhatIsMeantBelowTheLine) {
  EXPECT_THAT(withCarets(finding(), "some text here"), HasSubstr("\n    some text here\n"
                                                                 "         ^~~~\n"));
}

TEST(AReport, MarksOnePlaceWhereNothingIs) {
  Finding sut = finding();
  sut.length = 0;
  EXPECT_THAT(withCarets(sut, "some "), HasSubstr("\n    some \n         ^\n"));
}

TEST(AReport, ShowsNoLineForAWholeFile) {
  Finding sut = finding();
  sut.column = 1;
  sut.length = 0;
  EXPECT_THAT(withCarets(sut, "some text"), Not(HasSubstr("^")));
}

TEST(AReport, CountsCharactersAndNotBytesForTheMark) {
  Finding sut = finding();
  sut.column = 8;
  EXPECT_THAT(withCarets(sut, "\xC3\xA4\xC3\xB6\xC3\xBC text"), HasSubstr("\n        ^~~~\n"));
}

TEST(AReport, ShowsOnlyAPartOfALongLine) {
  Finding sut = finding();
  sut.column = 301;
  const std::string text = withCarets(sut, std::string(300, 'a') + "here" + std::string(207, 'b'));
  EXPECT_THAT(text, HasSubstr("\n    ..." + std::string(60, 'a') + "here" + std::string(36, 'b') +
                              "...\n    " + std::string(63, ' ') + "^~~~\n"));
}

TEST(AReport, ObeysNothingThatStandsInTheFile) {
  const std::string text = withCarets(finding(), "a\033[2J\x07 \xC2\x9B z\x7F");
  EXPECT_THAT(text, Not(testing::ContainsRegex("[\x1B\x07\x7F\x9B]")));
}

TEST(AReport, HasColoursOnlyWhenTheyAreWanted) {
  EXPECT_THAT(reportAsText({finding()}, {}, {false, true}), HasSubstr("\033[35mwarning:\033[0m"));
  EXPECT_THAT(reportAsText({finding()}, {}, {true, false}), Not(HasSubstr("\033")));
}

TEST(AReportForPrograms, HasAllOfAFinding) {
  Finding given = finding();
  given.suggestion = "right";
  const auto sut = nlohmann::json::parse(reportAsJson({given}));
  EXPECT_EQ(sut["findings"][0], nlohmann::json({{"file", "a.directives"},
                                                {"line", 3},
                                                {"column", 6},
                                                {"length", 4},
                                                {"severity", "warning"},
                                                {"code", "some-code"},
                                                {"text", "something is wrong."},
                                                {"suggestion", "right"}}));
}

TEST(AReportForPrograms, HasNoSuggestionWhereThereIsNone) {
  const auto sut = nlohmann::json::parse(reportAsJson({finding()}));
  EXPECT_FALSE(sut["findings"][0].contains("suggestion"));
}

TEST(AReportForPrograms, CountsEachSeverity) {
  const auto sut = nlohmann::json::parse(reportAsJson({finding(), finding()}));
  EXPECT_EQ(sut["errors"], 0);
  EXPECT_EQ(sut["warnings"], 2);
  EXPECT_EQ(sut["notes"], 0);
}

TEST(AReportForPrograms, OfNothingHasAnEmptyList) {
  EXPECT_EQ(nlohmann::json::parse(reportAsJson({}))["findings"], nlohmann::json::array());
}

TEST(AReportForPrograms, IsReadableWhateverBytesAreInTheFile) {
  Finding given = finding();
  given.text = "a \xFF byte";
  EXPECT_TRUE(nlohmann::json::accept(reportAsJson({given})));
}

}  // namespace
}  // namespace zerva
