#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <utility>

#include "registry/RegistryRecords.h"
#include "tests/support/Concurrently.h"

namespace zerva {
namespace {

using testing::Eq;
using testing::Optional;

class TheRecords : public testing::Test {
 protected:
  /** Who serves a channel; somebody does when it is not told otherwise, nobody when it is "". */
  std::map<std::string, std::string> servers;
  /** Is called, once, when somebody asks who serves a channel. */
  std::function<void()> meanwhile;
  RegistryRecords sut{[this](const std::string& channel) {
    const std::string server = servers.try_emplace(channel, "somebody").first->second;
    if (const auto now = std::exchange(meanwhile, nullptr)) now();
    return server;
  }};
};

TEST_F(TheRecords, GiveTheChannelOfAnInterface) {
  sut.announce("AIfc", "/a");
  EXPECT_THAT(sut.findChannel("AIfc"), Optional(Eq("/a")));
}

TEST_F(TheRecords, KnowNothingThatNobodyTold) {
  EXPECT_EQ(sut.findChannel("AIfc"), std::nullopt);
  EXPECT_FALSE(sut.findProxy("AIfc"));
  EXPECT_FALSE(sut.findInvoker("AIfc", "p"));
}

TEST_F(TheRecords, GiveTheChannelThatWasAnnouncedFirst) {
  sut.announce("AIfc", "/a");
  sut.announce("AIfc", "/b");
  sut.announce("AIfc", "/a");
  EXPECT_THAT(sut.findChannel("AIfc"), Optional(Eq("/a")));
}

TEST_F(TheRecords, DoNotGiveOutAChannelThatIsGone) {
  sut.announce("AIfc", "/a");
  sut.announce("AIfc", "/b");
  servers["/a"] = "";
  EXPECT_THAT(sut.findChannel("AIfc"), Optional(Eq("/b")));
}

TEST_F(TheRecords, DoNotGiveOutAChannelThatSomebodyElseServesByNow) {
  sut.announce("AIfc", "/a");
  servers["/a"] = "somebody else";
  EXPECT_EQ(sut.findChannel("AIfc"), std::nullopt);
}

TEST_F(TheRecords, ForgetAllThatBelongedToAChannelThatIsGone) {
  sut.announce("AIfc", "/a");
  sut.announce("BIfc", "/a");
  servers["/a"] = "";
  sut.findChannel("AIfc");
  servers["/a"] = "somebody";
  EXPECT_EQ(sut.findChannel("BIfc"), std::nullopt);
}

TEST_F(TheRecords, HoldWhatIsAnnouncedBeforeAnybodyServesTheChannel) {
  servers["/a"] = "";
  sut.announce("AIfc", "/a");
  sut.announce("AIfc", "/b");
  EXPECT_THAT(sut.findChannel("AIfc"), Optional(Eq("/b")));
  servers["/a"] = "somebody";
  EXPECT_THAT(sut.findChannel("AIfc"), Optional(Eq("/a"))) << "it was announced first";
  servers["/a"] = "somebody else";
  EXPECT_THAT(sut.findChannel("AIfc"), Optional(Eq("/b")));
}

// A service that was started again announced itself just when somebody found its old channel gone,
// and was taken for the old one and forgotten.
TEST_F(TheRecords, KeepWhatIsAnnouncedAgainWhileTheOldIsFoundGone) {
  sut.announce("AIfc", "/a");
  servers["/a"] = "";
  meanwhile = [this] {
    servers["/a"] = "somebody new";
    sut.announce("AIfc", "/a");
  };
  sut.findChannel("AIfc");
  EXPECT_THAT(sut.findChannel("AIfc"), Optional(Eq("/a")));
}

TEST_F(TheRecords, ForgetAChannelThatIsGone) {
  sut.announce("AIfc", "/a");
  servers["/a"] = "";
  sut.findChannel("AIfc");
  servers["/a"] = "somebody";
  EXPECT_EQ(sut.findChannel("AIfc"), std::nullopt);
}

TEST_F(TheRecords, KnowAnInterfaceAgainThatIsAnnouncedAgain) {
  sut.announce("AIfc", "/a");
  servers["/a"] = "";
  sut.findChannel("AIfc");
  servers["/a"] = "somebody";
  sut.announce("AIfc", "/a");
  EXPECT_THAT(sut.findChannel("AIfc"), Optional(Eq("/a")));
}

TEST_F(TheRecords, TakeBackOneAnnouncementOnly) {
  sut.announce("AIfc", "/a");
  sut.announce("AIfc", "/b");
  sut.announce("BIfc", "/a");
  sut.withdraw("AIfc", "/a");
  EXPECT_THAT(sut.findChannel("AIfc"), Optional(Eq("/b")));
  EXPECT_THAT(sut.findChannel("BIfc"), Optional(Eq("/a")));
}

TEST_F(TheRecords, TakeBackWhatTheyDoNotKnowWithoutHarm) {
  sut.announce("AIfc", "/a");
  sut.withdraw("AIfc", "/b");
  sut.withdraw("BIfc", "/a");
  EXPECT_THAT(sut.findChannel("AIfc"), Optional(Eq("/a")));
}

TEST_F(TheRecords, HoldTheLatestProxyOfAnInterface) {
  sut.recordProxy("AIfc", {"libOld.so", "createOld"});
  sut.recordProxy("AIfc", {"libNew.so", "createNew"});
  EXPECT_EQ(sut.findProxy("AIfc")->lib, "libNew.so");
  EXPECT_EQ(sut.findProxy("AIfc")->creator, "createNew");
}

TEST_F(TheRecords, HoldTheLatestInvokerOfAnInterfaceAndProtocol) {
  sut.recordInvoker("AIfc", "p", {"libOld.so", "createOld"});
  sut.recordInvoker("AIfc", "p", {"libNew.so", "createNew"});
  sut.recordInvoker("AIfc", "q", {"libQ.so", "createQ"});
  EXPECT_EQ(sut.findInvoker("AIfc", "p")->lib, "libNew.so");
  EXPECT_EQ(sut.findInvoker("AIfc", "q")->creator, "createQ");
}

TEST(RecordsOfManyThreads, LoseNothing) {
  RegistryRecords sut{[](const std::string&) { return std::string("somebody"); }};
  concurrently(8, [&](std::size_t thread) {
    for (int i = 0; i < 100; ++i) {
      const std::string name = std::to_string(thread) + "/" + std::to_string(i);
      sut.announce(name, name);
      sut.recordProxy(name, {name, name});
      sut.findChannel("0/0");
    }
  });
  for (std::size_t thread = 0; thread < 8; ++thread) {
    EXPECT_THAT(sut.findChannel(std::to_string(thread) + "/99"), Optional(testing::_));
    EXPECT_TRUE(sut.findProxy(std::to_string(thread) + "/99"));
  }
}

}  // namespace
}  // namespace zerva
