#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include "host/Console.h"

namespace zerva {
namespace {

/** Standard output is a terminal, or a file, as long as this lives. */
class StandardOutput {
 public:
  explicit StandardOutput(int to) : before_(::dup(STDOUT_FILENO)), to_(to) {
    EXPECT_EQ(::dup2(to_, STDOUT_FILENO), STDOUT_FILENO);
  }
  ~StandardOutput() {
    ::dup2(before_, STDOUT_FILENO);
    ::close(before_);
    ::close(to_);
  }
  StandardOutput(const StandardOutput&) = delete;
  StandardOutput& operator=(const StandardOutput&) = delete;

 private:
  const int before_;
  const int to_;
};

class AConsole : public testing::Test {
 protected:
  AConsole() {
    EXPECT_EQ(::grantpt(terminal_), 0);
    EXPECT_EQ(::unlockpt(terminal_), 0);
    ::unsetenv("NO_COLOR");
  }
  ~AConsole() override {
    ::unsetenv("NO_COLOR");
    ::close(terminal_);
  }

  int terminal() const { return ::open(::ptsname(terminal_), O_RDWR | O_NOCTTY | O_CLOEXEC); }
  static int file() { return ::open("/dev/null", O_WRONLY | O_CLOEXEC); }

 private:
  const int terminal_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
};

TEST_F(AConsole, ThatIsATerminal_ShowsGoodAndBadInColours) {
  const StandardOutput output(terminal());
  const Console sut;
  EXPECT_EQ(sut.good("up"), "\033[32mup\033[0m");
  EXPECT_EQ(sut.bad("failed"), "\033[31mfailed\033[0m");
}

TEST_F(AConsole, ThatIsNoTerminal_ShowsWordsAsTheyAre) {
  const StandardOutput output(file());
  const Console sut;
  EXPECT_EQ(sut.good("up"), "up");
  EXPECT_EQ(sut.bad("failed"), "failed");
}

TEST_F(AConsole, WhereColoursAreRefused_ShowsWordsAsTheyAre) {
  const StandardOutput output(terminal());
  ::setenv("NO_COLOR", "1", 1);
  const Console sut;
  EXPECT_EQ(sut.good("up"), "up");
  EXPECT_EQ(sut.bad("failed"), "failed");
}

TEST_F(AConsole, WhereTheRefusalOfColoursIsEmpty_HasThem) {
  const StandardOutput output(terminal());
  ::setenv("NO_COLOR", "", 1);
  EXPECT_EQ(Console().good("up"), "\033[32mup\033[0m");
}

}  // namespace
}  // namespace zerva
