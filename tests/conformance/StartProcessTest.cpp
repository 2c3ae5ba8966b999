#include "tests/conformance/DirectiveFileTest.h"

namespace zerva::conformance {
namespace {

/** At level 5 the success is seen, at 4 it is not. The processes belong to nobody. */
class AStartProcessDirective : public DirectiveFileTest, public testing::WithParamInterface<int> {
 protected:
  AStartProcessDirective() { logLevel(GetParam()); }

  static std::string started(const std::string& program) {
    return progress("start_process successfully started: '%s'", program);
  }
  static std::string failed(const std::string& program) {
    return error("start_process failed to start process: '%s'", program);
  }
};

TEST_P(AStartProcessDirective, StartsTheProgramWithTheVersionAsLastArgument) {
  leaves("Process#1");
  process("start_process:/usr/bin/worker -v 3\n");
  expectTrace({"ZervaVersion()",
               "Process#1 = Process(4, \"/usr/bin/worker\", \"-v\", \"3\", \"7.8.9-recording\", "
               "null, environ, null)",
               "Process#1.ID()", started("/usr/bin/worker")});
}

TEST_P(AStartProcessDirective, OfAProgramAlone_HasTwoArguments) {
  leaves("Process#1");
  process("start_process: worker\n");
  expectTrace({"ZervaVersion()",
               "Process#1 = Process(2, \"worker\", \"7.8.9-recording\", null, environ, null)",
               "Process#1.ID()", started("worker")});
}

TEST_P(AStartProcessDirective, OfManyArguments_KeepsThemAllInOrder) {
  leaves("Process#1");
  process("start_process:p  a b\tc d e f\n");
  expectTrace({"ZervaVersion()",
               "Process#1 = Process(8, \"p\", \"a\", \"b\", \"c\", \"d\", \"e\", \"f\", "
               "\"7.8.9-recording\", null, environ, null)",
               "Process#1.ID()", started("p")});
}

TEST_P(AStartProcessDirective, WithAMode_TakesItForTheProgram) {
  leaves("Process#1");
  process("start_process:MT a b c d\n");
  expectTrace({"ZervaVersion()",
               "Process#1 = Process(6, \"MT\", \"a\", \"b\", \"c\", \"d\", \"7.8.9-recording\", "
               "null, environ, null)",
               "Process#1.ID()", started("MT")});
}

TEST_P(AStartProcessDirective, OnAPlatformWithoutAVersionText_HasAnEmptyLastArgument) {
  leaves("Process#1");
  Platform::setVersion("");
  process("start_process:worker -v\n");
  expectTrace({"ZervaVersion()",
               "Process#1 = Process(3, \"worker\", \"-v\", \"\", null, environ, null)",
               "Process#1.ID()", started("worker")});
}

TEST_P(AStartProcessDirective, WithAnIdOfZeroOrLess_IsReportedAndTheFileGoesOn) {
  leaves("Process#1");
  leaves("Process#2");
  leaves("Process#3");
  Platform::answer("Process#1.ID(", 0);
  Platform::answer("Process#2.ID(", -1);
  Platform::answer("Process#3.ID(", 1);
  process("start_process:p\nstart_process:q\nstart_process:r\n");
  const std::string end = ", \"7.8.9-recording\", null, environ, null)";
  expectTrace({"ZervaVersion()", "Process#1 = Process(2, \"p\"" + end, "Process#1.ID()",
               failed("p"), "ZervaVersion()", "Process#2 = Process(2, \"q\"" + end,
               "Process#2.ID()", failed("q"), "ZervaVersion()",
               "Process#3 = Process(2, \"r\"" + end, "Process#3.ID()", started("r")});
}

TEST_P(AStartProcessDirective, WithoutAProgram_IsReported) {
  process("start_process:\nstart_process:   \t\n");
  const std::string empty =
      error("ServiceConfiguratr::Empty 'start_process' directive was received");
  expectTrace({empty, empty});
}

INSTANTIATE_TEST_SUITE_P(AtLevel, AStartProcessDirective, testing::Values(4, 5));

}  // namespace
}  // namespace zerva::conformance
