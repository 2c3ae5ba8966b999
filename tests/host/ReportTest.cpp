#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "host/Console.h"
#include "host/Report.h"

namespace zerva {
namespace {

std::string written(const std::function<void(Report&)>& body) {
  testing::internal::CaptureStdout();
  Console console;
  Report report(console);
  body(report);
  return testing::internal::GetCapturedStdout();
}

TEST(TheSummary, SaysThatAllCameUpAndWentDown) {
  const std::string sut = written([](Report& report) { report.summary({{5, 5}, 2, 2, 12, 0}); });
  EXPECT_EQ(sut,
            "zerva: 5 services and 2 started processes came up and went down, 12 calls, 0 "
            "failures\n");
}

TEST(TheSummary, CountsOneAsOne) {
  const std::string sut = written([](Report& report) { report.summary({{1, 1}, 1, 1, 1, 1}); });
  EXPECT_EQ(sut,
            "zerva: 1 service and 1 started process came up and went down, 1 call, 1 failure\n");
}

TEST(TheSummary, SaysWhenNotAllWentDown) {
  const std::string sut = written([](Report& report) { report.summary({{2, 1}, 1, 0, 0, 0}); });
  EXPECT_EQ(sut,
            "zerva: 2 services and 1 started process came up, 1 service and 0 started processes "
            "went down, 0 calls, 0 failures\n");
}

TEST(TheReport, UsesNoColoursWhereThereIsNoTerminal) {
  const std::string sut = written([](Report& report) { report.failed("this", "of that"); });
  EXPECT_EQ(sut, "failed   this: of that\n");
}

TEST(TheReport, NamesALegacyServiceWithoutTheBlanksAtItsEnd) {
  ServiceEntry service;
  service.interfaces = "OldIfc ";
  const std::string sut = written([&](Report& report) { report.serviceDeleted(service); });
  EXPECT_EQ(sut, "deleted  OldIfc\n");
}

}  // namespace
}  // namespace zerva
