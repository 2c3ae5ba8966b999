#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "host/explain/ExplainReport.h"
#include "tests/host/explain/ExplainedFile.h"

namespace zerva {
namespace {

using testing::HasSubstr;
using testing::Not;

const std::string registry =
    "service_info: libR.so createR /zerva/serviceregistry ServiceRegistryIfc\n";

std::string sut(const std::string& text) {
  const ExplainedFile file(text);
  const FileExplanation explained = explainFile(file.subject);
  return explanationAsText(explained, explained.lines);
}

nlohmann::json json(const std::string& text) {
  const ExplainedFile file(text);
  const FileExplanation explained = explainFile(file.subject);
  return nlohmann::json::parse(explanationAsJson(explained, explained.lines));
}

TEST(TheExplanation, TakesLinesTogetherThatAreEmptyOrComments) {
  EXPECT_EQ(sut("# a\n\n# b\n"),
            "a.directives:1: lines 1 to 3 are empty or comments.\nNo service comes up.\n");
  EXPECT_EQ(sut("# a\n"), "a.directives:1: is a comment.\nNo service comes up.\n");
}

TEST(TheExplanation, TakesLinesTogetherThatAreNotRead) {
  EXPECT_THAT(sut("start_process: MT a\n#\nstart_process: b\n"),
              HasSubstr("\na.directives:2: lines 2 to 3 are not read: line 1 ends the start.\n"));
}

TEST(TheExplanation, DoesNotHideWhatIsFoundInAComment) {
  EXPECT_THAT(sut("# a\n# b\rc\n"),
              HasSubstr("a.directives:1: is a comment.\na.directives:2: is a comment.\n"
                        "    warning: what stands behind"));
}

TEST(TheExplanation, HasWhatHappensBelowTheLineAndThenWhatIsWrong) {
  EXPECT_THAT(sut("servce_info: a\n"),
              HasSubstr("a.directives:1: is skipped: nobody knows its keyword.\n"
                        "    An error in the log shows it as it is written: \"invalid directive "
                        "received\".\n"
                        "    error: the keyword 'servce_info' is not known: the line only gives an "
                        "error in the log. Did you mean 'service_info'? [unknown-keyword]\n"));
}

TEST(TheExplanation, HasNothingThatATerminalWouldObey) {
  EXPECT_THAT(sut("start_process: \033[31m\n"), Not(HasSubstr("\033")));
}

TEST(TheExplanation, EndsWithWhatItComesTo) {
  EXPECT_THAT(sut(registry + "service_instance: libA.so createA /a AIfc\n" +
                  "service_legacy: libL.so createL LIfc\nstart_process: a\n"),
              testing::EndsWith("\n3 services: 1 created at once, 1 lazy and 1 legacy. "
                                "1 program.\n"));
}

TEST(TheExplanation, CountsWhatFails) {
  EXPECT_THAT(sut("no colon\n"), testing::EndsWith("\n1 line does not do what it asks for.\n"));
  EXPECT_THAT(sut("no colon\na:\n"), testing::EndsWith("\n2 lines do not do what they ask for.\n"));
}

TEST(TheExplanation, SaysWhenTheRegistryHasToBeElsewhere) {
  EXPECT_THAT(sut("service_info: libA.so createA /a AIfc\n"),
              testing::EndsWith("\nNo line brings up a registry: another process has to serve "
                                "/zerva/serviceregistry before. `zerva run --await` waits for "
                                "that.\n"));
  EXPECT_THAT(sut(registry), Not(HasSubstr("--await")));
}

TEST(TheExplanation, SaysWhenARunRefusesTheFile) {
  EXPECT_THAT(sut("start_process: MT a\n"),
              testing::EndsWith("\nAll of this with --no-check only: `zerva run` starts nothing "
                                "because of line 1.\n"));
}

TEST(TheExplanation, OfSomeLinesHasNoSum) {
  const ExplainedFile file("# a\n# b\n");
  const FileExplanation explained = explainFile(file.subject);
  EXPECT_EQ(explanationAsText(explained, {explained.lines.at(1)}),
            "a.directives:2: is a comment.\n");
}

TEST(TheExplanationForPrograms, HasTheFieldsOfALine) {
  const auto sut = json("service_info: ST libA.so createA /a AIfc BIfc\n")["lines"][0];
  EXPECT_EQ(sut["line"], 1);
  EXPECT_EQ(sut["keyword"], "service_info");
  EXPECT_EQ(sut["mode"], "ST");
  EXPECT_EQ(sut["library"], "libA.so");
  EXPECT_EQ(sut["creator"], "createA");
  EXPECT_EQ(sut["channel"], "/a");
  EXPECT_EQ(sut["interfaces"], nlohmann::json({"AIfc", "BIfc"}));
  EXPECT_EQ(sut["outcome"], "done");
  EXPECT_EQ(sut["title"], "prepares the lazy service AIfc and BIfc");
  EXPECT_EQ(sut["steps"].size(), 5U);
}

TEST(TheExplanationForPrograms, GivesTheModeThatHoldsWithoutOne) {
  EXPECT_EQ(json("service_info: libA.so createA /a AIfc\n")["lines"][0]["mode"], "MT");
}

TEST(TheExplanationForPrograms, HasTheProtocolOfARecord) {
  const auto sut = json("invoker_info: libA.so createA AIfc zerva_svc_xml\n")["lines"][0];
  EXPECT_EQ(sut["protocol"], "zerva_svc_xml");
  EXPECT_FALSE(sut.contains("channel"));
  EXPECT_FALSE(sut.contains("mode"));
}

TEST(TheExplanationForPrograms, HasThePathOfALibrary) {
  ExplainedFile file("service_info: libA.so createA /a AIfc\n");
  file.library(1);
  const FileExplanation explained = explainFile(file.subject);
  const auto sut = nlohmann::json::parse(explanationAsJson(explained, explained.lines));
  EXPECT_EQ(sut["lines"][0]["path"], "lib/libA.so");
}

TEST(TheExplanationForPrograms, HasWhatIsFound) {
  const auto sut = json("servce_info: a\n")["lines"][0]["findings"][0];
  EXPECT_EQ(sut["code"], "unknown-keyword");
  EXPECT_EQ(sut["severity"], "error");
  EXPECT_EQ(sut["column"], 1);
  EXPECT_EQ(sut["length"], 11);
  EXPECT_EQ(sut["suggestion"], "service_info");
}

TEST(TheExplanationForPrograms, HasTheSum) {
  const auto sut = json("service_info: libA.so createA /a AIfc\nno colon\n");
  EXPECT_EQ(sut["file"], "a.directives");
  EXPECT_EQ(sut["lazy"], 1);
  EXPECT_EQ(sut["immediate"], 0);
  EXPECT_EQ(sut["failed"], 1);
  EXPECT_EQ(sut["not_read"], 0);
}

TEST(TheExplanationForPrograms, TakesAnyBytes) {
  EXPECT_EQ(json("start_process: \xFF\n")["lines"][0]["outcome"], "done");
}

}  // namespace
}  // namespace zerva
