#include <cstdint>
#include <limits>
#include <stdexcept>

#include "tests/conformance/AnsweringChannel.h"
#include "tests/conformance/ConformanceTest.h"

namespace zerva::conformance {
namespace {

class ARegistryQuery : public ConfiguratorTest {
 protected:
  std::string ask(std::string request, std::string response = {}) {
    sut->findInRegistry(request, response);
    return response;
  }

  /** The ids of the requests that were sent, in order. */
  static std::vector<std::string> ids() {
    std::vector<std::string> ids;
    const std::string call = ".setRequestId(";
    for (const std::string& line : Trace::lines()) {
      const auto at = line.find(call);
      if (at != std::string::npos) ids.push_back(line.substr(at + call.size()));
    }
    return ids;
  }
};

TEST_F(ARegistryQuery, SendsTheRequestAndWaitsForTheReplyWithoutALock) {
  Platform::reply("find:FooIfc,host", "found:/x/svc");
  EXPECT_EQ(ask("find:FooIfc,host"), "found:/x/svc");
  expectTrace({query("find:FooIfc,host")});
}

TEST_F(ARegistryQuery, ReplacesWhatTheResponseHeld) {
  Platform::reply("q", "new");
  EXPECT_EQ(ask("q", "old and longer than the new one"), "new");
}

TEST_F(ARegistryQuery, WithAnEmptyReply_EmptiesTheResponse) {
  Platform::reply("q", "");
  EXPECT_EQ(ask("q", "old"), "");
}

TEST_F(ARegistryQuery, ThatNobodyAnswers_GivesTheRequestBack) {
  EXPECT_EQ(ask("find_proxy:FooIfc"), "find_proxy:FooIfc");
  expectTrace({query("find_proxy:FooIfc")});
}

TEST_F(ARegistryQuery, LeavesTheRequestAsItWas) {
  Platform::reply("q", "reply");
  std::string request = "q";
  std::string response;
  sut->findInRegistry(request, response);
  EXPECT_EQ(request, "q");
}

TEST_F(ARegistryQuery, AskedAgain_IsSentAgainWithTheNextId) {
  ask("q");
  ask("q");
  expectTrace({query("q", 1), query("q", 2)});
}

TEST_F(ARegistryQuery, AfterTheLastId_GoesOnWithOne) {
  sut->registryRequestId = std::numeric_limits<std::uint32_t>::max() - 1;
  ask("q");
  ask("q");
  ask("q");
  EXPECT_THAT(ids(), testing::ElementsAre("4294967295)", "1)", "2)"));
  EXPECT_EQ(sut->registryRequestId, 2u);
}

TEST_F(ARegistryQuery, BeyondHalfOfTheIds_ReceivesTheReplyOfItsOwnId) {
  sut->registryRequestId = 0x7fffffffU;
  Platform::reply("q", "reply");
  EXPECT_EQ(ask("q"), "reply");
  EXPECT_THAT(ids(), testing::ElementsAre("2147483648)"));
}

TEST_F(ARegistryQuery, WhileAnotherWaitsForItsReply_HasAnIdOfItsOwn) {
  Platform::reply("inner", "inner reply");
  Platform::reply("outer", "outer reply");
  std::string inside;
  Platform::once("host.receiveReply(", [this, &inside] { inside = ask("inner"); });
  EXPECT_EQ(ask("outer"), "outer reply");
  EXPECT_EQ(inside, "inner reply");
  EXPECT_EQ(sut->registryRequestId, 2u);
}

TEST_F(ARegistryQuery, CountsWhileItHoldsItsSemaphore) {
  sut->registryRequestId = 7;
  std::uint32_t before = 0;
  std::uint32_t after = 0;
  Platform::once("registrySem.take(", [&] { before = sut->registryRequestId; });
  Platform::once("registrySem.give(", [&] { after = sut->registryRequestId; });
  ask("q");
  EXPECT_EQ(before, 7u);
  EXPECT_EQ(after, 8u);
}

TEST_F(ARegistryQuery, ReadsTheCounterOnlyWhenItHoldsItsSemaphore) {
  // Others have counted while this one waited for the semaphore.
  Platform::once("registrySem.take(", [this] { sut->registryRequestId = 41; });
  ask("q");
  EXPECT_THAT(ids(), testing::ElementsAre("42)"));
}

TEST_F(ARegistryQuery, KeepsItsIdWhenOthersCountOn) {
  Platform::once("Message#1.setRequestId(", [this] { sut->registryRequestId = 99; });
  ask("q");
  EXPECT_THAT(Trace::lines(), testing::Contains("host.receiveReply(Message#1, 1)"));
  EXPECT_EQ(sut->registryRequestId, 99u);
}

/** A call that throws while the registry is asked. */
class AnExceptionInAQuery : public ARegistryQuery,
                            public testing::WithParamInterface<const char*> {};

TEST_P(AnExceptionInAQuery, PassesAndUsesTheIdUp) {
  Platform::once(GetParam(), [] { throw std::runtime_error("thrown here"); });
  EXPECT_EQ(messageOf<std::runtime_error>([this] { ask("q"); }), "thrown here");
  EXPECT_EQ(Trace::lines().back(), "~Message#1");
  EXPECT_THAT(fakes::SemaphoreTable::held(), testing::IsEmpty());
  EXPECT_EQ(sut->registryRequestId, 1u);
  forget();
  ask("q");
  expectTrace({query("q", 2)});
}

INSTANTIATE_TEST_SUITE_P(From, AnExceptionInAQuery,
                         testing::Values("host.send(", "host.receiveReply("));

/** The ids as the channel and its messages are given them. */
class TheIdOfAQuery : public HostTest {
 protected:
  /** The id that a query has after the one before it. */
  long after(std::uint32_t before) {
    std::string request = "q";
    std::string response;
    sut->registryRequestId = before;
    sut->findInRegistry(request, response);
    EXPECT_EQ(answering.sent(), answering.awaited());
    return answering.sent().back();
  }

  AnsweringChannel answering;
  std::unique_ptr<OpenConfigurator> sut = make<OpenConfigurator>(&answering, &repository);
};

TEST_F(TheIdOfAQuery, BelowHalfOfThem_IsItsNumber) {
  EXPECT_EQ(after(0), 1);
  EXPECT_EQ(after(0x7ffffffeU), 0x7fffffff);
}

// The same 32 bits everywhere; what number they are is the word size's matter.
TEST_F(TheIdOfAQuery, BeyondHalfOfThem_IsItsBits) {
  constexpr bool isWide = sizeof(long) > sizeof(std::uint32_t);
  EXPECT_EQ(after(0x7fffffffU), isWide ? static_cast<long>(2147483648LL) : -2147483647L - 1);
  EXPECT_EQ(after(0xfffffffeU), isWide ? static_cast<long>(4294967295LL) : -1L);
}

TEST_F(TheIdOfAQuery, AfterTheLast_IsOne) { EXPECT_EQ(after(0xffffffffU), 1); }

}  // namespace
}  // namespace zerva::conformance
