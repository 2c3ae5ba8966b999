#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>

#include "runtime/libClientUtils/bus/FileDescriptor.h"
#include "runtime/libClientUtils/bus/Frames.h"
#include "tests/platform/Bus/BusWorld.h"
#include "tests/platform/RecordingSink.h"
#include "tests/support/FileText.h"
#include "tests/support/WaitUntil.h"

namespace {

using namespace zerva;
using testing::Contains;
using testing::HasSubstr;

class NamesOnTheBus : public BusWorld {
 protected:
  Bus sut{path};
};

TEST_F(NamesOnTheBus, MayHoldAnyCharacters) {
  const BusPartner partner(path, "/partner");
  for (const std::string& name :
       {std::string("nul\0nul", 7), std::string("a b:c/d\n\r\t"), std::string("\xff\xfe"),
        std::string("../up"), std::string("n", 1), std::string(" ")}) {
    partner.tell("serve echo MT " + name);
    EXPECT_EQ(ask(name, "found").data, "found") << name;
  }
}

TEST_F(NamesOnTheBus, MayBeAsLongAsTheLimit) {
  const BusPartner partner(path, "/partner");
  const std::string longest(kMaximumName, 'n');
  partner.tell("serve echo MT " + longest);
  EXPECT_EQ(ask(longest, "found").data, "found");
}

TEST_F(NamesOnTheBus, ThatAreTooLong_WorkInTheirOwnProcessAndAreLogged) {
  const BusPartner partner(path, "/partner");
  const RecordingSink log("Bus", 2);
  const std::string tooLong(kMaximumName + 1, 'n');
  serve(tooLong, Mode::MT, [](const std::string& request) { return request; });
  EXPECT_EQ(ask(tooLong, "found").data, "found");
  EXPECT_THAT(log.texts(), Contains(HasSubstr("it has 65536 bytes, more than 65535")));
  EXPECT_EQ(partner.tell("ask " + tooLong + "|x"),
            "error: nobody serves channel '" + tooLong + "'");
}

TEST_F(NamesOnTheBus, AreKnownToOthersWhenServingThemHasBegunAndNotBefore) {
  const BusPartner partner(path, "/partner");
  CommsChannel channel("/test/caller", nullptr);
  EXPECT_FALSE(channel.isServed("/new"));
  for (int i = 0; i < 50; ++i) {
    const std::string name = "/new" + std::to_string(i);
    partner.tell("serve echo MT " + name);
    EXPECT_TRUE(channel.isServed(name));
    partner.tell("close " + name);
    EXPECT_FALSE(channel.isServed(name));
    EXPECT_EQ(ask(name, "x").error, "nobody serves channel '" + name + "'");
  }
}

TEST_F(NamesOnTheBus, TellWhetherTheyAreStillServedByTheSame) {
  BusPartner partner(path, "/partner");
  CommsChannel channel("/test/caller", nullptr);
  EXPECT_EQ(channel.whoServes("/name"), "");
  partner.tell("serve echo MT /name");
  const std::string first = channel.whoServes("/name");
  EXPECT_NE(first, "");
  EXPECT_EQ(channel.whoServes("/name"), first);
  partner.tell("close /name");
  EXPECT_EQ(channel.whoServes("/name"), "");
  partner.tell("serve echo MT /name");
  EXPECT_NE(channel.whoServes("/name"), "");
  EXPECT_NE(channel.whoServes("/name"), first);
}

#if !defined(__SANITIZE_ADDRESS__)
// Not under that sanitizer: its check of an object's type opens descriptors, and where none are
// left it calls good objects bad ones.
TEST_F(NamesOnTheBus, AreKnownAsBeforeWhileThereAreNoDescriptors) {
  const BusPartner partner(path, "/partner");
  partner.tell("serve echo MT /name");
  const RecordingSink log("Bus");
  CommsChannel channel("/test/caller", nullptr);
  const std::string before = channel.whoServes("/name");
  std::vector<FileDescriptor> all;
  while (all.empty() || all.back()) all.emplace_back(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  EXPECT_FALSE(channel.isServed("/nobody"));
  EXPECT_EQ(channel.whoServes("/name"), before);
  EXPECT_EQ(ask("/name", "x").data, "x");
  all.clear();
  EXPECT_THAT(log.texts(), Contains(HasSubstr("cannot be looked up: Too many open files")));
  EXPECT_EQ(channel.whoServes("/name"), before);
}
#endif

TEST_F(NamesOnTheBus, ServedBeforeTheBusWasOpened_AreKnownToOthers) {
  const TempDirectory other;
  const BusPartner partner(path, "/partner");
  EXPECT_EQ(partner.tell("ask /here|x"), "error: nobody serves channel '/here'");
  serve("/here", Mode::MT, [](const std::string& request) { return request; });
  EXPECT_EQ(partner.tell("ask /here|x"), "x");
}

TEST_F(NamesOnTheBus, ThatThisProcessServesItself_AreNotLookedForElsewhere) {
  const BusPartner partner(path, "/partner");
  partner.tell("serve echo MT /both");
  serve("/both", Mode::MT, [](const std::string&) { return std::string("mine"); });
  EXPECT_EQ(ask("/both", "x").data, "mine");
}

TEST_F(NamesOnTheBus, ServedByTwoProcesses_GoToTheOneThatHasServedThemLonger) {
  const BusPartner one(path, "/one");
  const BusPartner two(path, "/two");
  two.tell("serve process MT /both");
  one.tell("serve process MT /both");
  const BusPartner three(path, "/three");
  three.tell("serve process MT /both");
  EXPECT_EQ(ask("/both", "").data, std::to_string(const_cast<BusPartner&>(two).process().id()));
  two.tell("close /both");
  EXPECT_EQ(ask("/both", "").data, std::to_string(const_cast<BusPartner&>(one).process().id()));
}

TEST_F(NamesOnTheBus, ServedByTwoProcesses_StayReachableWhenOneIsKilled) {
  BusPartner one(path, "/one");
  one.tell("serve process MT /both");
  BusPartner two(path, "/two");
  two.tell("serve process MT /both");
  EXPECT_EQ(ask("/both", "").data, std::to_string(one.process().id()));
  one.process().signal(SIGKILL);
  one.process().wait();
  EXPECT_TRUE(waitUntil([&] { return ask("/both", "").ok; }));
  EXPECT_EQ(ask("/both", "").data, std::to_string(two.process().id()));
}

TEST_F(NamesOnTheBus, OfTwoChannelsOfOneProcess_HoldUntilTheLastIsClosed) {
  const BusPartner partner(path, "/partner");
  CommsChannel channel("/test/caller", nullptr);
  serve("/two", Mode::MT, [](const std::string&) { return std::string("first"); });
  services.push_back(
      std::make_unique<ScriptedService>([](const std::string&) { return std::string("second"); }));
  ServiceExecutor& second = world.run(services.back().get(), "/two", Mode::MT);
  EXPECT_EQ(partner.tell("ask /two|"), "first");
  second.shutdown();
  EXPECT_EQ(partner.tell("ask /two|"), "first");
}

TEST_F(NamesOnTheBus, ThatComeAndGoForLong_DoNotMakeTheirFileGrowForLong) {
  const BusPartner partner(path, "/partner");
  const std::string name(30000, 'n');
  for (int i = 0; i < 40; ++i) {
    partner.tell("serve echo MT " + name);
    EXPECT_EQ(ask(name, "x").data, "x");
    partner.tell("close " + name);
    EXPECT_FALSE(ask(name, "x").ok);
  }
  for (const auto& entry : std::filesystem::directory_iterator(path)) {
    if (entry.path().extension() == ".names") {
      EXPECT_LT(entry.file_size(), 400'000U);
    }
  }
  EXPECT_EQ(partner.tell("descriptors"), partner.tell("descriptors"));
}

TEST_F(NamesOnTheBus, OfAFileThatIsNoList_AreLeftOutWithOneLogLine) {
  const BusPartner partner(path, "/partner");
  const RecordingSink log("Bus");
  writeFile(path / "77-0123456789abcdef.names", "this is no list of names");
  for (int i = 0; i < 3; ++i) {
    EXPECT_FALSE(ask("/nobody", "x").ok);
  }
  EXPECT_EQ(log.texts(), std::vector<std::string>{"the names of process 77 are not known, its file "
                                                  "is no list of names"});
  EXPECT_EQ(partner.tell("ask /partner|ask /nobody|x"), "error: nobody serves channel '/nobody'");
}

}  // namespace
