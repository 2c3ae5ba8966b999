#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "framework/Threader.h"
#include "tests/platform/ClientUtils/FunctionBody.h"
#include "tests/platform/RecordingSink.h"
#include "tests/support/NoMemory.h"

namespace zerva {
namespace {

using testing::Contains;
using testing::HasSubstr;

/** What is logged when a thread ends by an exception and the nth allocation from there on fails. */
std::vector<std::string> linesWithout(int nth) {
  const RecordingSink log{"Threads", 2};
  const std::runtime_error error("a text that cannot be kept without memory");
  FunctionBody body([&] {
    letAllocationFail(nth);
    throw error;
  });
  EXPECT_TRUE(Threader().spawn(nullptr, &body, "failing", THREAD_PRIORITY_NORMAL, 0));
  body.waitForThreadCompletion();
  return log.texts();
}

// Where memory was short, what had ended one thread ended the process: to say whose code it was and
// why takes memory, and that there was none was an exception which nothing was left to catch.
TEST(AnExceptionOfAThreadBody, ThatThereIsNoMemoryToTellOf_EndsThatThreadOnly) {
  std::vector<std::string> shortened;
  int nth = 1;
  for (;; ++nth) {
    const std::vector<std::string> lines = linesWithout(nth);
    if (testing::Matches(Contains(HasSubstr("a text that cannot be kept")))(lines)) break;
    shortened.insert(shortened.end(), lines.begin(), lines.end());
    ASSERT_LT(nth, 100) << "the whole line never came";
  }
  EXPECT_GT(nth, 2);
  EXPECT_THAT(shortened, Contains("An exception ended the thread 'failing'"));
}

}  // namespace
}  // namespace zerva
