#include <gtest/gtest.h>

#include "runtime/libServiceExecutor/Progress.h"
#include "tests/support/Barrier.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/WaitUntil.h"

namespace {

using testing::HasSubstr;
using zerva::executorProgress;
using zerva::ExecutorProgress;
using zerva::waitUntil;

/** Of the only executor that there is. */
ExecutorProgress progress() {
  const auto all = executorProgress();
  EXPECT_EQ(all.size(), 1U);
  return all.empty() ? ExecutorProgress{} : all.front();
}

class AnExecutorsProgress : public testing::TestWithParam<Mode> {};

TEST_P(AnExecutorsProgress, CountsWhatIsServedAndWhatWaits) {
  ExecutorWorld world(1);
  zerva::Gate gate;
  ScriptedService service([&](const std::string& request) {
    gate.wait();
    return request;
  });
  world.run(&service, "/slow", GetParam());
  EXPECT_EQ(progress().begun, 0U);
  EXPECT_EQ(progress().queued, 0U);
  EXPECT_EQ(progress().description, "");

  CommsChannel caller("/test/caller", nullptr);
  caller.sendTo("/slow", "one");
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  caller.sendTo("/slow", "two");
  caller.sendTo("/slow", "three");
  EXPECT_EQ(progress().begun, 1U);
  EXPECT_EQ(progress().queued, 2U);
  EXPECT_THAT(progress().description, HasSubstr("channel '/slow'"));

  gate.open();
  EXPECT_TRUE(waitUntil([] { return progress().begun == 3; }));
  EXPECT_EQ(progress().queued, 0U);
  world.end();
  EXPECT_TRUE(executorProgress().empty());
}

INSTANTIATE_TEST_SUITE_P(OfBothKinds, AnExecutorsProgress, testing::Values(Mode::ST, Mode::MT));

TEST(ALazyExecutorsProgress, CountsTheMakingOfItsServiceAsBegunAndItsCauseAsNotWaiting) {
  ExecutorWorld world;
  zerva::Gate gate;
  ScriptedService service;
  world.context.make = [&] {
    gate.wait();
    return &service;
  };
  world.runLazy("/lazy", Mode::ST);
  CommsChannel caller("/test/caller", nullptr);
  caller.sendTo("/lazy", "x");
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  EXPECT_EQ(progress().begun, 1U);
  EXPECT_EQ(progress().queued, 0U);
  caller.sendTo("/lazy", "behind it");
  EXPECT_EQ(progress().queued, 1U);
  gate.open();
  EXPECT_TRUE(waitUntil([] { return progress().begun == 3; }));
  EXPECT_EQ(progress().queued, 0U);
  world.end();
}

TEST(AnExecutorsProgressId, IsThatOfNoOther) {
  ExecutorWorld world;
  ScriptedService first;
  ScriptedService second;
  world.run(&first, "/first", Mode::ST);
  const auto before = progress().id;
  EXPECT_EQ(progress().id, before);
  world.end();
  world.run(&second, "/second", Mode::ST);
  EXPECT_NE(progress().id, before);
  world.end();
}

}  // namespace
