#include <cstdint>
#include <limits>

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

}  // namespace
}  // namespace zerva::conformance
