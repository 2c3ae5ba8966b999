#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>

#include "host/Console.h"

namespace zerva {
namespace {

/** How a console shows two words. */
struct Shown {
  std::string good;
  std::string bad;
};

class AConsole : public testing::Test {
 protected:
  AConsole() {
    EXPECT_EQ(::grantpt(other_), 0);
    EXPECT_EQ(::unlockpt(other_), 0);
    ::unsetenv("NO_COLOR");
  }
  ~AConsole() override {
    ::unsetenv("NO_COLOR");
    ::close(other_);
  }

  Shown onATerminal() const { return on(::ptsname(other_)); }

  /** What a console shows whose standard output is a file; afterwards it is again what it was. */
  static Shown on(const char* file) {
    const int before = ::dup(STDOUT_FILENO);
    const int output = ::open(file, O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_EQ(::dup2(output, STDOUT_FILENO), STDOUT_FILENO) << file;
    const Console sut;
    ::dup2(before, STDOUT_FILENO);
    ::close(output);
    ::close(before);
    return {sut.good("up"), sut.bad("failed")};
  }

 private:
  const int other_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
};

TEST_F(AConsole, ThatIsATerminal_ShowsGoodAndBadInColours) {
  const Shown shown = onATerminal();
  EXPECT_EQ(shown.good, "\033[32mup\033[0m");
  EXPECT_EQ(shown.bad, "\033[31mfailed\033[0m");
}

TEST_F(AConsole, ThatIsNoTerminal_ShowsWordsAsTheyAre) {
  const Shown shown = on("/dev/null");
  EXPECT_EQ(shown.good, "up");
  EXPECT_EQ(shown.bad, "failed");
}

TEST_F(AConsole, WhereColoursAreRefused_ShowsWordsAsTheyAre) {
  ::setenv("NO_COLOR", "1", 1);
  const Shown shown = onATerminal();
  EXPECT_EQ(shown.good, "up");
  EXPECT_EQ(shown.bad, "failed");
}

TEST_F(AConsole, WhereTheRefusalOfColoursIsEmpty_HasThem) {
  ::setenv("NO_COLOR", "", 1);
  EXPECT_EQ(onATerminal().good, "\033[32mup\033[0m");
}

}  // namespace
}  // namespace zerva
