#include <atomic>

#include "framework/ServiceThreadPool.h"
#include "tests/contract/ContractTest.h"
#include "tests/support/ExecutorWorld.h"

namespace {

class APool : public ContractTest {};

TEST_F(APool, RunsATaskOnce) {
  std::atomic<int> ran{0};
  ServiceThreadPool sut(2, nullptr);
  EXPECT_TRUE(sut.execute([&] { ++ran; }));
  EXPECT_TRUE(zerva::contract::settle([&] { return ran == 1; }));
}

TEST_F(APool, KeepsItsDispatcherForThoseThatHaveNone) {
  InvokeInterceptorDispatcher dispatcher;
  const ServiceThreadPool sut(2, &dispatcher);
  EXPECT_EQ(sut.dispatcher(), &dispatcher);
}

TEST_F(APool, DeletesTheExecutorsThatAreLeft) {
  ScriptedContext context;
  CommsChannel caller("/caller", nullptr);
  {
    ServiceThreadPool sut(2, nullptr);
    auto* const left = new ServiceExecutor(
        "lib", "creator", "Ifc", new CommsChannel("/left", nullptr), &context, &sut, nullptr, true);
    ExecutorWorld::start(*left);
    EXPECT_TRUE(caller.isServed("/left"));
  }
  EXPECT_FALSE(caller.isServed("/left"));
}

}  // namespace
