#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <memory>
#include <new>
#include <thread>
#include <utility>

#include "framework/ServiceThreadPool.h"
#include "runtime/libClientUtils/ExceptionText.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/WaitUntil.h"

namespace {

using zerva::waitUntil;

/** Whether there is no memory when the calling thread asks the next time. */
thread_local bool thereIsNone = false;

/** Says more than fits without memory. */
class WordyError final : public std::exception {
 public:
  const char* what() const noexcept override { return "there is much to be said about this"; }
};

TEST(APool, WhoseThreadHasNoMemoryToWait_RunsTheNextTaskOnItAllTheSame) {
  ServiceThreadPool sut(1, nullptr);
  std::atomic<int> done{0};
  ASSERT_TRUE(sut.execute([&] {
    thereIsNone = true;
    ++done;
  }));
  ASSERT_TRUE(waitUntil([&] { return done == 1; }));
  // Not for the next task alone, which the thread may take before it waits.
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  bool noneWasWanted = false;
  ASSERT_TRUE(sut.execute([&] {
    noneWasWanted = std::exchange(thereIsNone, false);
    ++done;
  }));
  ASSERT_TRUE(waitUntil([&] { return done == 2; }));
  EXPECT_TRUE(noneWasWanted);
}

// The thread slept on, and whoever deleted the executor waited for it for ever.
TEST(AnExecutor, ThatThereWasNoMemoryToShutDown_IsDeletedAllTheSame) {
  ExecutorWorld world;
  ScriptedService service;
  world.build(&service, "/held", Mode::ST);
  auto* const channel = new CommsChannel("/svc", nullptr);
  auto sut = std::make_unique<ServiceExecutor>(&service, channel, "Ifc", &world.context,
                                               &world.pool, nullptr, false);
  ExecutorWorld::start(*sut);
  ASSERT_TRUE(ask("/svc", "x").ok);
  CommsChannelDataContainerMessage asked;
  asked.setChannel("/held");
  asked.setRequestId(1);
  channel->send(asked);

  thereIsNone = true;
  const auto error = zerva::exceptionOf([&] { sut->shutdown(); });

  EXPECT_FALSE(std::exchange(thereIsNone, false));
  EXPECT_TRUE(error);
  sut.reset();
  world.end();
}

TEST(AMessage, LikeOneThatWasServed_TakesNoMemory) {
  ExecutorWorld world;
  ScriptedService service;
  const std::string text = "short";  // one that was kept may have room for no more
  const std::string name = "/a channel with a name that takes memory";
  CommsChannel from("/from", nullptr);
  world.run(&service, name, Mode::ST);
  ASSERT_TRUE(from.sendTo(name, text));
  // When its thread has ended, what the message took is there for others.
  world.end();
  world.run(&service, name, Mode::ST);

  thereIsNone = true;
  const bool sent = from.sendTo(name, text);

  EXPECT_TRUE(std::exchange(thereIsNone, false));
  EXPECT_TRUE(sent);
  world.end();
}

/** Gives its answer and then throws what there is no memory to tell of. */
class FailingService final : public ScriptedService {
 public:
  void messageReceived(const CommsChannelDataContainerMessage& message,
                       CommsChannelDataContainerMessage& reply) override {
    if (message.getData() != "fail") return;
    reply.setData("somebody's secret");
    thereIsNone = true;
    throw WordyError();
  }
};

TEST(AnExecutor, OfAServiceThatFailsWithoutMemory_GivesNobodyTheAnswerThatWasBegun) {
  ExecutorWorld world;
  FailingService service;
  world.run(&service, "/svc", Mode::ST);
  EXPECT_FALSE(ask("/svc", "fail").ok);
  const Answer next = ask("/svc", "x");
  EXPECT_TRUE(next.ok) << next.error;
  EXPECT_EQ(next.data, "");
  world.end();
}

}  // namespace

void* operator new(std::size_t size) {
  if (std::exchange(thereIsNone, false)) throw std::bad_alloc();
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}

// Inlined, the compiler would see memory of `new` given to `free`.
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }

[[gnu::noinline]] void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
