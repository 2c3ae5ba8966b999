// Two threads at one semaphore of the configurator: the second one waits until the first has given
// it back, and both come through.

#include <algorithm>
#include <thread>

#include "tests/conformance/AnsweringChannel.h"
#include "tests/conformance/ProxyLookupTest.h"
#include "tests/support/WaitUntil.h"

namespace zerva::conformance {
namespace {

bool somebodyWaitsFor(const std::string& semaphore) {
  return waitUntil([&semaphore] {
    const std::vector<std::string> waited = fakes::SemaphoreTable::waitedFor();
    return std::find(waited.begin(), waited.end(), semaphore) != waited.end();
  });
}

/** @returns at which place of a trace the first line stands that begins with a text. */
std::ptrdiff_t placeOf(const Lines& lines, const std::string& beginning) {
  const auto found = std::find_if(lines.begin(), lines.end(), [&](const std::string& line) {
    return line.rfind(beginning, 0) == 0;
  });
  EXPECT_NE(found, lines.end()) << beginning;
  return found - lines.begin();
}

class TwoThreads : public ProxyLookup {
 protected:
  TwoThreads() { fakes::SemaphoreTable::letThreadsWait(); }

  /** Lets another thread run until it waits for a semaphore that this thread holds. */
  template <class Work>
  void letAnotherWaitFor(const std::string& semaphore, Work work) {
    another = std::thread(work);
    EXPECT_TRUE(somebodyWaitsFor(semaphore));
  }

  /** A creator that lets another thread do something meanwhile, the first time that it is called.
   */
  template <class Work>
  void offerProxyThatTakesLong(const std::string& creator, Work meanwhile) {
    offer("libA.so", creator, fakes::Creators::proxy([this, meanwhile]() -> Proxy* {
            letAnotherWaitFor("proxySem", meanwhile);
            return new fakes::RecordingProxy;
          }));
  }

  Proxy* makeProxy(std::string creator, std::string ifc) {
    std::string lib = "libA.so";
    std::string svcChannel = "/svc/a";
    std::string qualifier;
    return plain->initProxyAndAddToRepository(lib, creator, svcChannel, ifc, qualifier);
  }

  std::thread another;
};

TEST_F(TwoThreads, ThatMakeProxies_MakeOneAfterTheOther) {
  Proxy* others = nullptr;
  offerProxy("libA.so", "createB");
  offerProxyThatTakesLong("createA", [&] { others = makeProxy("createB", "BarIfc"); });
  Proxy* ours = makeProxy("createA", "FooIfc");
  another.join();
  const Lines lines = Trace::lines();
  EXPECT_LT(placeOf(lines, "proxySem.give("), placeOf(lines, "createB()"));
  std::string foo = "FooIfc";
  std::string bar = "BarIfc";
  EXPECT_EQ(inner.findServiceProxy(foo), ours);
  EXPECT_EQ(inner.findServiceProxy(bar), others);
}

TEST_F(TwoThreads, ThatMakeAProxyAndRemoveOne_RemoveItAfterTheMaking) {
  Proxy* old = recordProxy("OldIfc", "/svc/old", "");
  std::string ifc = "OldIfc";
  offerProxyThatTakesLong("createA", [&] { plain->removeAndDeleteProxyFromRepository(old, ifc); });
  EXPECT_NE(makeProxy("createA", "FooIfc"), nullptr);
  another.join();
  const Lines lines = Trace::lines();
  EXPECT_LT(placeOf(lines, "proxySem.give("), placeOf(lines, "repository.deleteOneServiceProxy("));
  EXPECT_EQ(inner.findServiceProxy(ifc), nullptr);
}

TEST_F(TwoThreads, ThatRemoveAProxyAndMakeOne_MakeItAfterTheRemoval) {
  Proxy* old = recordProxy("OldIfc", "/svc/old", "");
  std::string ifc = "OldIfc";
  Proxy* made = nullptr;
  offerProxy("libA.so", "createA");
  Platform::once("repository.deleteOneServiceProxy(", [&] {
    letAnotherWaitFor("proxySem", [&] { made = makeProxy("createA", "FooIfc"); });
  });
  plain->removeAndDeleteProxyFromRepository(old, ifc);
  another.join();
  const Lines lines = Trace::lines();
  EXPECT_LT(placeOf(lines, "proxySem.give("), placeOf(lines, "createA()"));
  EXPECT_NE(made, nullptr);
}

TEST_F(TwoThreads, ThatLookOneInvokerUp_MakeItOnce) {
  Platform::reply("find_invoker:FooIfc,tcp", "found_invoker:libA.so,createA");
  const auto find = [this] {
    std::string ifc = "FooIfc";
    std::string protocol = "tcp";
    return plain->findInvoker(ifc, protocol);
  };
  Invoker* others = nullptr;
  offer("libA.so", "createA", fakes::Creators::invoker([&]() -> Invoker* {
          letAnotherWaitFor("invokerSem", [&] { others = find(); });
          return new fakes::RecordingInvoker;
        }));
  Invoker* ours = find();
  another.join();
  EXPECT_NE(ours, nullptr);
  EXPECT_EQ(others, ours);
  const Lines lines = Trace::lines();
  EXPECT_EQ(std::count_if(
                lines.begin(), lines.end(),
                [](const std::string& line) { return line.rfind("host.receiveReply(", 0) == 0; }),
            2);
  EXPECT_EQ(std::count_if(
                lines.begin(), lines.end(),
                [](const std::string& line) { return line.find(" = Dll(") != std::string::npos; }),
            1);
}

/** Queries on a channel that serves several threads at once. */
class ThreadsAtTheRegistry : public TwoThreads {
 protected:
  std::string ask() {
    std::string request = "q";
    std::string response;
    asking->findInRegistry(request, response);
    return response;
  }

  AnsweringChannel answering;
  std::unique_ptr<OpenConfigurator> asking = make<OpenConfigurator>(&answering, &repository);
};

TEST_F(ThreadsAtTheRegistry, OfWhichOneCounts_CountOneAfterTheOther) {
  std::string others;
  Platform::once("registrySem.give(",
                 [&] { letAnotherWaitFor("registrySem", [&] { others = ask(); }); });
  const std::string ours = ask();
  another.join();
  EXPECT_EQ(ours, "reply to 1");
  EXPECT_EQ(others, "reply to 2");
}

TEST_F(ThreadsAtTheRegistry, OfWhichOneWaitsForItsReply_DoNotWaitForEachOther) {
  // What the first one waits for is that the second one has got its reply.
  std::string others;
  Platform::once("Message#1.setRequestId(", [&] {
    another = std::thread([&] { others = ask(); });
    another.join();
  });
  EXPECT_EQ(ask(), "reply to 1");
  EXPECT_EQ(others, "reply to 2");
}

TEST_F(ThreadsAtTheRegistry, AskingManyTimes_NeverUseAnIdTwice) {
  constexpr int kThreads = 4;
  constexpr int kQuestions = 25;
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([this] {
      for (int n = 0; n < kQuestions; ++n) ask();
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::vector<long> ids = answering.sent();
  std::sort(ids.begin(), ids.end());
  ASSERT_EQ(ids.size(), std::size_t{kThreads * kQuestions});
  for (std::size_t i = 0; i < ids.size(); ++i) EXPECT_EQ(ids[i], static_cast<long>(i) + 1);
}

}  // namespace
}  // namespace zerva::conformance
