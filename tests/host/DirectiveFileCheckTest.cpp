#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "host/DirectiveFileCheck.h"
#include "tests/support/TempDirectory.h"

namespace zerva {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class TheLookOverOfAFile : public testing::Test {
 protected:
  std::vector<std::string> sut(const std::string& text) {
    std::vector<std::string> findings;
    for (const Finding& finding : checkDirectiveFile(directory.write("file", text))) {
      findings.push_back(std::to_string(finding.line) + ":" + std::to_string(finding.column));
      lastText = finding.text;
    }
    return findings;
  }

  TempDirectory directory;
  std::string lastText;
};

TEST_F(TheLookOverOfAFile, FindsNothingInAnEmptyOne) { EXPECT_THAT(sut(""), IsEmpty()); }

TEST_F(TheLookOverOfAFile, FindsNothingInOneThatIsMissing) {
  EXPECT_THAT(checkDirectiveFile(directory.file("missing")), IsEmpty());
}

TEST_F(TheLookOverOfAFile, FindsNothingInAGoodOne) {
  EXPECT_THAT(sut("# comment: a\n\nservice_instance: MT a.so b c D\nservice_info:a.so b c\n"
                  "service_legacy: a.so b\nstart_process: x\nunknown: x\nwords\n"),
              IsEmpty());
}

TEST_F(TheLookOverOfAFile, AllowsALineOf511Characters) {
  EXPECT_THAT(sut(std::string(511, 'x') + "\n"), IsEmpty());
}

TEST_F(TheLookOverOfAFile, RefusesALineOf512Characters) {
  EXPECT_THAT(sut(std::string(512, 'x') + "\n"), ElementsAre("1:512"));
  EXPECT_THAT(lastText, HasSubstr("512 characters"));
}

TEST_F(TheLookOverOfAFile, CountsTheCarriageReturn) {
  EXPECT_THAT(sut(std::string(510, 'x') + "\r\n"), IsEmpty());
  EXPECT_THAT(sut(std::string(511, 'x') + "\r\n"), ElementsAre("1:512"));
}

TEST_F(TheLookOverOfAFile, CountsWhatComesAfterACarriageReturnOrAZero) {
  EXPECT_THAT(sut("a\r" + std::string(511, 'x')), ElementsAre("1:512"));
  EXPECT_THAT(sut(std::string("a\0", 2) + std::string(511, 'x')), ElementsAre("1:512"));
}

TEST_F(TheLookOverOfAFile, RefusesALastLineThatIsTooLongWithoutALineFeed) {
  EXPECT_THAT(sut("a\n" + std::string(600, 'x')), ElementsAre("2:512"));
}

TEST_F(TheLookOverOfAFile, RefusesACommentThatIsTooLong) {
  EXPECT_THAT(sut("#" + std::string(511, 'x')), ElementsAre("1:512"));
}

TEST_F(TheLookOverOfAFile, FindsALineOfManyMegabytes) {
  EXPECT_THAT(sut(std::string(8'000'000, 'x') + "\na: ST b\n"), ElementsAre("1:512", "2:4"));
}

TEST_F(TheLookOverOfAFile, RefusesAModeWithThreeFieldsAfterIt) {
  EXPECT_THAT(sut("service_instance:MT a.so b c\n"), ElementsAre("1:18"));
  EXPECT_THAT(lastText, HasSubstr("MT needs at least four fields after it, and the line has 3"));
}

TEST_F(TheLookOverOfAFile, RefusesAModeWithoutFieldsForAnyKeyword) {
  for (const char* keyword : {"service_instance", "service_info", "service_legacy", "invoker_info",
                              "proxy_info", "start_process", "unknown", ""}) {
    EXPECT_THAT(sut(std::string(keyword) + ":ST a\n"), SizeIs(1)) << keyword;
  }
}

TEST_F(TheLookOverOfAFile, LetsCommentsBe) {
  EXPECT_THAT(sut("comment:MT\n#:MT\n  # a:MT\n"), IsEmpty());
}

TEST_F(TheLookOverOfAFile, CountsTheColumnInTheLineAsWritten) {
  EXPECT_THAT(sut(" \tservice_info: \t  ST a\n"), ElementsAre("1:20"));
}

TEST_F(TheLookOverOfAFile, DoesNotTakeAWordBehindABlankBeforeTheColonForAMode) {
  EXPECT_THAT(sut("service_info : MT a\n"), IsEmpty());
}

TEST_F(TheLookOverOfAFile, SeesOnlyWhatComesBeforeACarriageReturn) {
  EXPECT_THAT(sut("service_instance: MT a.so b\rc D\n"), ElementsAre("1:19"));
}

TEST_F(TheLookOverOfAFile, TellsEverythingItFinds) {
  EXPECT_THAT(sut("a:MT\nb: x\n" + std::string(512, 'x') + "\nc:ST"),
              ElementsAre("1:3", "3:512", "4:3"));
}

TEST_F(TheLookOverOfAFile, RefusesADirectory) {
  const auto sut = checkDirectiveFile(directory.path());
  ASSERT_THAT(sut, SizeIs(1));
  EXPECT_EQ(sut[0].text, "this is a directory; only a regular file can be read.");
}

TEST_F(TheLookOverOfAFile, RefusesAPipeWithoutOpeningIt) {
  const std::string pipe = directory.file("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const auto sut = checkDirectiveFile(pipe);
  ASSERT_THAT(sut, SizeIs(1));
  EXPECT_EQ(sut[0].text, "this is a pipe; only a regular file can be read.");
}

TEST_F(TheLookOverOfAFile, RefusesASocket) {
  const std::string path = directory.file("socket");
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  ::close(socket);
  const auto sut = checkDirectiveFile(path);
  ASSERT_EQ(sut.size(), 1U);
  EXPECT_EQ(sut[0].text, "this is a socket; only a regular file can be read.");
}

// Such a file is a regular one, and opens; a reader that only looks for its end never finds it.
TEST_F(TheLookOverOfAFile, RefusesAFileThatCannotBeReadThoughItOpens) {
  const auto sut = checkDirectiveFile("/proc/self/mem");
  ASSERT_EQ(sut.size(), 1U);
  EXPECT_EQ(sut[0].text, "it can be opened but not read, and reading it would never end.");
}

TEST(AFinding, IsWrittenAsCompilersWriteTheirs) {
  EXPECT_EQ(
      formatFinding({"a.directives", 3, 19, "something is wrong.", 1, Severity::Error, "code"}),
      "a.directives:3:19: error: something is wrong. [code]");
}

}  // namespace
}  // namespace zerva
