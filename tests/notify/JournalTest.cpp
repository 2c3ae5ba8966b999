// What a host says on standard error when that leads to the journal, which takes the priority of a
// line from its beginning. A file stands in for the journal.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/TempDirectory.h"

namespace zerva {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class AHostsErrors : public testing::Test {
 protected:
  /** @returns standard error of `zerva run` with these words; its journal is what a shell says. */
  static std::string of(const std::vector<std::string>& words, const std::string& journal) {
    std::vector<std::string> all{
        "-c", "JOURNAL_STREAM=" + journal + " && export JOURNAL_STREAM && exec \"$@\"", "sh",
        ZERVA_BUILD_DIRECTORY "/bin/zerva", "run"};
    all.insert(all.end(), words.begin(), words.end());
    ChildProcess sut("sh", all);
    EXPECT_TRUE(sut.wait());
    return sut.errors();
  }

  const TempDirectory directory;
  const std::string itself = "$(stat -Lc %d:%i /proc/self/fd/2)";
};

TEST_F(AHostsErrors, HaveThePriorityOfErrorsInTheJournal) {
  const std::string file = directory.write("services", "");
  EXPECT_THAT(of({"--log-file", directory.file("missing/log"), file}, itself),
              StartsWith("<3>zerva: cannot open the log file "));
}

TEST_F(AHostsErrors, HaveItAlsoWhereTheLookOverFindsThem) {
  const std::string file =
      directory.write("services", "service_instance: ST\nservice_instance: ST\n");
  const std::string errors = of({file}, itself);
  EXPECT_THAT(errors, StartsWith("<3>" + file + ":1:"));
  EXPECT_THAT(errors, HasSubstr("\n<3>" + file + ":2:"));
}

TEST_F(AHostsErrors, HaveItAlsoWhereTheCommandLineIsNotUnderstood) {
  EXPECT_THAT(of({"--nonsense", "services"}, itself), StartsWith("<3>"));
}

TEST_F(AHostsErrors, HaveItAlsoWhereTheManagerCannotBeTold) {
  const std::string file = directory.write("services", "");
  EXPECT_THAT(of({"--for", "0", file}, itself + " NOTIFY_SOCKET=nonsense && export NOTIFY_SOCKET"),
              StartsWith("<3>zerva: the service manager is not told anything"));
}

TEST_F(AHostsErrors, ArePlainWhereStandardErrorIsNotTheJournal) {
  const std::string file = directory.write("services", "service_instance: ST\n");
  EXPECT_THAT(of({file}, "1:1"), StartsWith(file + ":1:"));
}

}  // namespace
}  // namespace zerva
