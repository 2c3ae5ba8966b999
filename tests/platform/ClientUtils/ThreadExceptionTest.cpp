#include <gmock/gmock.h>
#include <pthread.h>

#include <atomic>
#include <memory>
#include <stdexcept>

#include "framework/Dll.h"
#include "framework/Service.h"
#include "framework/Threader.h"
#include "tests/platform/ClientUtils/FunctionBody.h"
#include "tests/platform/Libraries.h"
#include "tests/platform/RecordingSink.h"
#include "tests/support/Barrier.h"

namespace zerva {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class AnExceptionOfAThreadBody : public testing::Test {
 protected:
  void run(Threadable& body) {
    ASSERT_TRUE(Threader().spawn(nullptr, &body, "failing", THREAD_PRIORITY_NORMAL, 0));
    body.waitForThreadCompletion();
  }

  /** The one line that was logged. */
  std::string line() const { return log.texts().size() == 1 ? log.texts().front() : "no line"; }

  const RecordingSink log{"Threads", 2};
};

TEST_F(AnExceptionOfAThreadBody, IsLoggedWithItsTextAndTheBody) {
  FunctionBody sut([] { throw std::runtime_error("no paper"); });

  run(sut);

  EXPECT_THAT(line(), HasSubstr("no paper"));
  EXPECT_THAT(line(), HasSubstr("'failing'"));
  EXPECT_THAT(line(), HasSubstr("FunctionBody of platform_thread"));
  EXPECT_EQ(log.records().front().level, 2);
}

TEST_F(AnExceptionOfAThreadBody, MayBeABareText) {
  FunctionBody sut([] { throw "just a text"; });

  run(sut);

  EXPECT_THAT(line(), HasSubstr("just a text"));
}

TEST_F(AnExceptionOfAThreadBody, MayBeAnything) {
  FunctionBody sut([] { throw 42; });

  run(sut);

  EXPECT_THAT(line(), HasSubstr("an exception of type int"));
}

TEST_F(AnExceptionOfAThreadBody, MayHaveATypeOfALibraryThatIsClosedThen) {
  {
    Dll library(libraryDirectory() / "libplatform_plugin.so");
    auto* const create = reinterpret_cast<Service* (*)()>(library.symbol("createPluginService"));
    const std::unique_ptr<Service> sut(create());
    run(*sut);
  }

  EXPECT_THAT(line(), HasSubstr("the plugin failed"));
  EXPECT_THAT(line(), HasSubstr("PluginService of libplatform_plugin.so"));
}

TEST_F(AnExceptionOfAThreadBody, EndsNoOtherThread) {
  Gate gate;
  std::atomic<bool> finished{false};
  FunctionBody other([&] {
    gate.wait();
    finished = true;
  });
  ASSERT_TRUE(Threader().spawn(nullptr, &other, "other", THREAD_PRIORITY_NORMAL, 0));
  FunctionBody sut([] { throw std::runtime_error("no paper"); });

  run(sut);
  gate.open();
  other.waitForThreadCompletion();

  EXPECT_TRUE(finished);
}

TEST_F(AnExceptionOfAThreadBody, DoesNotKeepTheBodyFromBeingStartedAgain) {
  int runs = 0;
  FunctionBody sut([&] {
    if (++runs == 1) throw std::runtime_error("the first time");
  });

  run(sut);
  run(sut);

  EXPECT_EQ(runs, 2);
  EXPECT_EQ(log.texts().size(), 1U);
}

TEST_F(AnExceptionOfAThreadBody, IsNotWhatEndsAThreadThatEndsItself) {
  FunctionBody sut([] { pthread_exit(nullptr); });

  run(sut);
  run(sut);

  EXPECT_THAT(log.texts(), IsEmpty());
}

}  // namespace
}  // namespace zerva
