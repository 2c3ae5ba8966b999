// A line that does not fit the buffer makes the reading never end. A child process that may use one
// second of the processor shows it: the system ends it with a signal, where it would otherwise
// leave by itself within milliseconds.

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "tests/conformance/DirectiveFileTest.h"
#include "tests/support/FileText.h"

namespace zerva::conformance {
namespace {

class AnOverlongLine : public DirectiveFileTest {
 protected:
  /** Processes a file in a child. @returns how that ended, as waitpid tells it. */
  int processInChild(const std::string& text) {
    const std::string file = directory.write("directives", text).string();
    const pid_t child = fork();
    if (child == 0) {
      const rlimit second{1, 2};
      setrlimit(RLIMIT_CPU, &second);
      const rlimit noCore{0, 0};
      setrlimit(RLIMIT_CORE, &noCore);
      // The sanitizers' handler would report it as a crash.
      std::signal(SIGXCPU, SIG_DFL);
      Platform::on("", [this] { writeFile(directory.file("trace"), asText(Trace::lines())); });
      sut->processDirectives(file);
      _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status;
  }

  std::string traceOfChild() const { return readFile(directory.file("trace")); }
};

TEST_F(AnOverlongLine, IsProcessedUpToItsLimitAndThenNothingEnds) {
  const std::string limit = "bad:" + std::string(507, 'x');
  const int status = processInChild(limit + "y\nbad: 2\n");
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGXCPU);
  EXPECT_EQ(traceOfChild(), invalid(limit));
}

TEST_F(AnOverlongLine, ThatIsTheLastAndHasNoLineFeed_IsProcessedUpToItsLimitToo) {
  const std::string limit = "bad:" + std::string(507, 'x');
  const int status = processInChild(limit + "y");
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGXCPU);
  EXPECT_EQ(traceOfChild(), invalid(limit));
}

TEST_F(AnOverlongLine, CountsItsCarriageReturn) {
  const std::string limit = "bad:" + std::string(507, 'x');
  const int status = processInChild(limit + "\r\nbad: 2\n");
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGXCPU);
  EXPECT_EQ(traceOfChild(), invalid(limit));
}

TEST_F(AnOverlongLine, ThatFits_EndsInTheChildToo) {
  const int status = processInChild("bad: 1\n");
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(traceOfChild(), invalid("bad: 1"));
}

}  // namespace
}  // namespace zerva::conformance
