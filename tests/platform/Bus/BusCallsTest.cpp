#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <thread>
#include <utility>

#include "framework/CCInterceptor.h"
#include "framework/CCInterceptorDispatcher.h"
#include "framework/CallException.h"
#include "framework/ProxyRequestImpl.h"
#include "runtime/libClientUtils/ProtocolRepository.h"
#include "runtime/libClientUtils/ServingThread.h"
#include "runtime/libClientUtils/bus/Frames.h"
#include "tests/platform/Bus/BusWorld.h"
#include "tests/platform/Bus/WindSensor.h"
#include "tests/support/Barrier.h"
#include "tests/support/Concurrently.h"
#include "tests/support/WaitUntil.h"

namespace {

using namespace zerva;
using testing::HasSubstr;

class TheBus : public BusWorld {
 protected:
  Bus sut{path};
};

TEST_F(TheBus, CarriesARequestToAnotherProcessAndTheReplyBack) {
  const BusPartner partner(path, "/partner");
  partner.tell("serve echo MT /echo");
  const std::string bytes("a\0b\n\xff", 5);
  const Answer answer = ask("/echo", bytes);
  EXPECT_TRUE(answer.ok) << answer.error;
  EXPECT_EQ(answer.data, bytes);
}

TEST_F(TheBus, CarriesRequestsOfTheOtherProcessToThisOne) {
  serve("/here", Mode::ST, [](const std::string& request) { return request + "!"; });
  const BusPartner partner(path, "/partner");
  EXPECT_EQ(partner.tell("ask /here|hello"), "hello!");
}

TEST_F(TheBus, CarriesEmptyRequestsAndReplies) {
  const BusPartner partner(path, "/partner");
  partner.tell("serve echo MT /echo");
  const Answer answer = ask("/echo", "");
  EXPECT_TRUE(answer.ok) << answer.error;
  EXPECT_EQ(answer.data, "");
}

TEST_F(TheBus, CarriesTheErrorOfAServiceToWhoeverAsked) {
  serve("/fails", Mode::ST,
        [](const std::string&) -> std::string { throw std::runtime_error("I am out of order"); });
  const BusPartner partner(path, "/partner");
  EXPECT_THAT(partner.tell("ask /fails|x"), HasSubstr("I am out of order"));
}

/** A proxy for a wind sensor that is served in another process, in a protocol. */
class ACallOnTheBus : public TheBus, public testing::WithParamInterface<const char*> {
 protected:
  ACallOnTheBus() {
    partner.tell("wind /wind");
    sut.initialise(&request);
  }

  const BusPartner partner{path, "/partner"};
  ProtocolRepository protocols;
  CommsChannel channel{"/wind_proxy", nullptr};
  ProxyRequestImpl request{
      &channel, "/wind",       "WindSensor", GetParam(), protocols.findProtocolAdapter(GetParam()),
      "",       &world.context};
  WindSensorProxy sut;
};

INSTANTIATE_TEST_SUITE_P(InEachProtocol, ACallOnTheBus,
                         testing::Values("zerva_simple_rmi", "zerva_svc_xml"),
                         [](const auto& param) { return std::string(param.param); });

TEST_P(ACallOnTheBus, IsMadeInTheOtherProcessAndGivesItsResult) {
  EXPECT_EQ(sut.speed("pier"), 2.0);
}

TEST_P(ACallOnTheBus, FailsWithWhatTheServiceOfTheOtherProcessThrew) {
  try {
    sut.speed("");
    FAIL() << "nothing was thrown";
  } catch (const CallException& error) {
    EXPECT_EQ(error.getInterface(), "WindSensor");
    EXPECT_EQ(error.getMethod(), "speed");
    EXPECT_EQ(error.getChannel(), "/wind");
    EXPECT_THAT(error.getCause(), HasSubstr("which station?"));
  }
}

TEST_F(TheBus, FailsACallOfAnInterfaceWithAnEndlessName) {
  const BusPartner partner(path, "/partner");
  ProtocolRepository protocols;
  CommsChannel channel("/proxy", nullptr);
  ProxyRequestImpl request(&channel, "/partner", std::string(kMaximumName + 1, 'i'),
                           "zerva_simple_rmi", protocols.findProtocolAdapter("zerva_simple_rmi"),
                           "", &world.context);
  WindSensorProxy proxy;
  proxy.initialise(&request);
  EXPECT_THAT([&] { proxy.speed("pier"); },
              testing::Throws<CallException>(
                  testing::Property(&CallException::getCause, HasSubstr("65536 bytes, too many"))));
}

TEST_F(TheBus, BringsEachOfTwoChannelsOfOneNameItsOwnReplies) {
  serve("/here", Mode::MT, [](const std::string& request) { return "here: " + request; });
  const BusPartner partner(path, "/partner");
  partner.tell("serve echo MT /echo");
  // The partner asks from a channel of that name, too.
  CommsChannel one("/test/caller", nullptr);
  CommsChannel two("/test/caller", nullptr);
  concurrently(3, [&](std::size_t thread) {
    for (int i = 0; i < 100; ++i) {
      const std::string text = std::to_string(thread) + "/" + std::to_string(i);
      if (thread == 2) {
        EXPECT_EQ(partner.tell("ask /here|" + text), "here: " + text);
      } else {
        EXPECT_EQ(ask(thread == 0 ? one : two, "/echo", text).data, text);
      }
    }
  });
}

TEST_F(TheBus, TellsTheServiceTheRequestIdOfTheSender) {
  const auto answers = std::make_shared<std::atomic<long>>(0);
  class Service : public ScriptedService {
   public:
    explicit Service(std::shared_ptr<std::atomic<long>> id) : id_(std::move(id)) {}
    void messageReceived(const CommsChannelDataContainerMessage& message,
                         CommsChannelDataContainerMessage&) override {
      *id_ = message.getRequestId();
    }

   private:
    std::shared_ptr<std::atomic<long>> id_;
  };
  services.push_back(std::make_unique<Service>(answers));
  world.run(services.back().get(), "/here", Mode::ST);
  const BusPartner partner(path, "/partner");
  partner.tell("ask /here|x");
  partner.tell("ask /here|x");
  EXPECT_EQ(*answers, 1);  // what the partner asks with
}

TEST_F(TheBus, KeepsTheOrderOfWhatOneThreadSends) {
  const BusPartner partner(path, "/partner");
  partner.tell("serve record ST /record");
  CommsChannel one("/test/one", nullptr);
  CommsChannel two("/test/two", nullptr);
  std::string expected;
  for (int i = 0; i < 2000; ++i) {
    const std::string text = std::to_string(i) + " ";
    ASSERT_TRUE((i % 2 == 0 ? one : two).sendTo("/record", text));
    expected += text;
  }
  EXPECT_EQ(ask("/record", "").data, expected);
}

TEST_F(TheBus, KeepsTheOrderOfLongMessagesFromMemoryThatIsUsedAgain) {
  const BusPartner partner(path, "/partner");
  partner.tell("serve record ST /record");
  CommsChannel channel("/test/one", nullptr);
  std::string expected;
  std::string text;
  // More than fits into a socket that nobody has read yet.
  for (int i = 0; i < 60; ++i) {
    text.assign(70'000, static_cast<char>('!' + i));
    ASSERT_TRUE(channel.sendTo("/record", text));
    expected += text;
  }
  text.clear();
  EXPECT_TRUE(ask("/record", "").data == expected);
}

TEST_F(TheBus, KeepsTheOrderOfEachOfManyThreadsThatFillIt) {
  const BusPartner partner(path, "/partner");
  partner.tell("serve record ST /record");
  concurrently(4, [&](std::size_t thread) {
    CommsChannel channel("/test/" + std::to_string(thread), nullptr);
    std::string text;
    for (char i = 0; i < 20; ++i) {
      text.assign(20'000, static_cast<char>('A' + i));
      text[0] = static_cast<char>('0' + thread);
      ASSERT_TRUE(channel.sendTo("/record", text));
    }
  });
  const std::string all = ask("/record", "").data;
  ASSERT_EQ(all.size(), 4U * 20 * 20'000);
  std::map<char, std::string> letters;
  for (std::size_t at = 0; at < all.size(); at += 20'000) {
    EXPECT_EQ(all.substr(at + 1, 19'999), std::string(19'999, all[at + 1]));
    letters[all[at]] += all[at + 1];
  }
  for (char thread = '0'; thread < '4'; ++thread) {
    EXPECT_EQ(letters[thread], "ABCDEFGHIJKLMNOPQRST") << thread;
  }
}

TEST_F(TheBus, KeepsTheOrderWhenTheFirstOnesWaitForTheConnection) {
  // The partner connects to nobody before it is told to; all is sent before it can answer.
  const BusPartner partner(path, "/record");
  CommsChannel channel("/test/one", nullptr);
  for (int i = 0; i < 20; ++i) {
    ASSERT_TRUE(channel.sendTo("/record", "descriptors"));
  }
  EXPECT_EQ(partner.tell("ask /nobody|"), "error: nobody serves channel '/nobody'");
}

TEST_F(TheBus, GivesEachOfAHundredThreadsItsOwnReply) {
  const BusPartner partner(path, "/partner");
  partner.tell("serve echo MT /echo");
  CommsChannel channel("/test/caller", nullptr);
  std::atomic<int> right{0};
  concurrently(100, [&](std::size_t thread) {
    for (int i = 0; i < 10; ++i) {
      const std::string text = std::to_string(thread) + "/" + std::to_string(i);
      const Answer answer = ask(channel, "/echo", text, static_cast<long>(thread) + 1);
      right += answer.ok && answer.data == text ? 1 : 0;
    }
  });
  EXPECT_EQ(right, 1000);
}

TEST_F(TheBus, CarriesCallsOfManyThreadsInBothDirectionsAtOnce) {
  constexpr std::size_t kThreads = 8;
  constexpr int kRounds = 100;
  // So long that a thread that is not woken is noticed.
  const ReplyTimeoutOf late(std::chrono::hours(24));
  serve("/here/st", Mode::ST, [](const std::string& request) { return request; });
  serve("/here/mt", Mode::MT, [](const std::string& request) { return request; });
  const BusPartner partner(path, "/partner");
  for (const std::string there :
       {"echo ST /echo/st", "echo MT /echo/mt", "ask ST /ask/st", "ask MT /ask/mt"}) {
    partner.tell("serve " + there);
  }
  const std::vector<std::pair<std::string, std::string>> ways{
      {"/echo/st", ""},         {"/ask/mt", "/here/st|"}, {"/echo/mt", ""},
      {"/ask/st", "/here/mt|"}, {"/ask/st", "/here/st|"}, {"/ask/mt", "/here/mt|"}};

  concurrently(kThreads, [&](std::size_t thread) {
    for (int round = 0; round < kRounds; ++round) {
      const auto& [channel, before] = ways.at((thread + static_cast<std::size_t>(round)) % 6);
      const std::string data = std::to_string(thread) + " " + std::to_string(round);
      const Answer answer = ask(channel, before + data);
      ASSERT_TRUE(answer.ok) << answer.error;
      ASSERT_EQ(answer.data, data);
    }
  });
}

/** Notes who brought a reply last. */
class Bringer final : public CCInterceptor {
 public:
  void messageSent(const InterceptedMessage& /*message*/) override {}
  void messageReceived(const InterceptedMessage& message) override {
    if (message.reply) thread_ = std::this_thread::get_id();
  }
  std::thread::id thread() const { return thread_; }

 private:
  std::atomic<std::thread::id> thread_;
};

// To have another thread woken that hands it on takes longer than the call.
TEST_F(TheBus, LetsAThreadReadTheReplyThatItWaitsFor) {
  const BusPartner partner(path, "/partner");
  partner.tell("serve echo ST /echo");
  Bringer bringer;
  CCInterceptorDispatcher dispatcher;
  dispatcher.addInterceptor(&bringer);
  CommsChannel channel("/asking", &dispatcher);

  // One that comes before the thread waits is read by another.
  EXPECT_TRUE(waitUntil([&] {
    EXPECT_EQ(ask(channel, "/echo", "x").data, "x");
    return bringer.thread() == std::this_thread::get_id();
  }));

  dispatcher.removeInterceptor(&bringer);
}

/** Tells whether somebody's service asks on the thread that reads the request. */
class Reader final : public CCInterceptor {
 public:
  void messageSent(const InterceptedMessage& /*message*/) override {}
  void messageReceived(const InterceptedMessage& message) override {
    if (!message.reply) thread_ = std::this_thread::get_id();
    servesNobody_ = servesNobody_ && !servingThread().chain();
  }
  bool servesNobody() const { return servesNobody_; }
  std::thread::id thread() const { return thread_; }

 private:
  std::atomic<std::thread::id> thread_;
  std::atomic<bool> servesNobody_{true};
};

TEST_F(TheBus, LetsAServicesThreadReadItsNextRequest) {
  Reader reader;
  CCInterceptorDispatcher dispatcher;
  dispatcher.addInterceptor(&reader);
  std::atomic<bool> readItself{false};
  ScriptedService service([&](const std::string& request) {
    if (reader.thread() == std::this_thread::get_id()) readItself = true;
    return request;
  });
  ExecutorWorld here(1);
  for (const bool multiThreaded : {false, true}) {
    const std::string name = multiThreaded ? "/here/mt" : "/here/st";
    ServiceExecutor executor(&service, new CommsChannel(name, &dispatcher), "Ifc", &here.context,
                             &here.pool, nullptr, multiThreaded);
    here.start(executor);
    const BusPartner partner(path, "/partner" + name);
    readItself = false;

    // Who waited for the partner's answer would read.
    CommsChannel asking("/asking", nullptr);
    EXPECT_TRUE(waitUntil([&] {
      EXPECT_TRUE(asking.sendTo("/partner" + name, "ask " + name + "|x"));
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
      return readItself.load();
    })) << name;

    executor.shutdown();
  }
  EXPECT_TRUE(reader.servesNobody());
  dispatcher.removeInterceptor(&reader);
}

// What an interceptor does there would count as the service's.
TEST_F(TheBus, LetsAThreadThatReadsServeNothingMeanwhile) {
  Reader reader;
  CCInterceptorDispatcher dispatcher;
  dispatcher.addInterceptor(&reader);
  const BusPartner partner(path, "/partner");
  partner.tell("serve ask MT /ask");
  std::atomic<std::thread::id> waiting;
  serve("/waits", Mode::ST, [&](const std::string&) {
    waiting = std::this_thread::get_id();
    return ask("/ask", "/seen|x").data;
  });
  ScriptedService service([](const std::string& request) { return request; });
  ServiceExecutor seen(&service, new CommsChannel("/seen", &dispatcher), "Ifc", &world.context,
                       &world.pool, nullptr, false);
  ExecutorWorld::start(seen);

  EXPECT_TRUE(waitUntil([&] {
    EXPECT_EQ(ask("/waits", "").data, "x");
    return reader.thread() == waiting.load();
  }));

  EXPECT_TRUE(reader.servesNobody());
  seen.shutdown();
  dispatcher.removeInterceptor(&reader);
}

TEST_F(TheBus, LetsAServiceWithOneThreadBeCalledBackByWhomItWaitsFor) {
  const BusPartner partner(path, "/partner");
  partner.tell("serve ask ST /there");
  int depth = 0;
  serve("/here", Mode::ST, [&](const std::string& request) {
    ++depth;
    return request == "inner" ? "served at depth " + std::to_string(depth)
                              : ask("/there", "/here|inner").data;
  });
  EXPECT_EQ(ask("/here", "outer").data, "served at depth 2");
}

TEST_F(TheBus, LetsTwoServicesWithOneThreadCallEachOtherBackAndForth) {
  const BusPartner partner(path, "/partner");
  partner.tell("serve ask ST /there");
  serve("/here", Mode::ST, [&](const std::string& request) {
    const int left = std::stoi(request);
    return left == 0 ? std::string(".")
                     : ask("/there", "/here|" + std::to_string(left - 1)).data + "+";
  });
  EXPECT_EQ(ask("/here", "6").data, ".++++++");
}

TEST_F(TheBus, LetsNobodyElseIntoAServiceWithOneThreadThatWaitsForAnotherProcess) {
  const BusPartner partner(path, "/partner");
  serve("/back", Mode::MT, [](const std::string& request) { return request; });
  partner.tell("serve ask MT /there");
  Journal journal;
  serve("/here", Mode::ST, [&](const std::string& request) {
    journal.add("begin " + request);
    ask("/there", "/back|x");
    journal.add("end " + request);
    return request;
  });
  concurrently(4, [&](std::size_t thread) { ask("/here", std::to_string(thread)); });
  const auto entries = journal.entries();
  ASSERT_EQ(entries.size(), 8U);
  for (std::size_t i = 0; i < entries.size(); i += 2) {
    EXPECT_EQ(entries[i].substr(6), entries[i + 1].substr(4));
  }
}

TEST_F(TheBus, EndsAChainThatGoesBackAndForthWithoutEnd) {
  const BusPartner partner(path, "/partner");
  partner.tell("serve ask MT /there");
  serve("/here", Mode::ST, [&](const std::string& request) {
    const Answer answer = ask("/there", "/here|" + request);
    return answer.ok ? answer.data : answer.error;
  });
  EXPECT_THAT(ask("/here", "x").data, HasSubstr("requests inside each other on the thread"));
}

TEST_F(TheBus, CarriesAMessageAsLongAsTheLimitAndNoneThatIsLonger) {
  const BusPartner partner(path, "/partner");
  partner.tell("serve echo MT /e");
  // Type, two ids, two empty texts, chain with one link, and the two names with their lengths.
  const std::string from = "/test/caller";
  const std::size_t overhead = 1 + 4 + 4 + 2 + 2 + 8 + 2 + 8 + 2 + from.size() + 2 + 2;
  const std::string longest(kMaximumFrame - overhead, 'x');

  const Answer answer = ask("/e", longest);
  EXPECT_TRUE(answer.ok) << answer.error;
  EXPECT_TRUE(answer.data == longest);

  const Answer refused = ask("/e", longest + "x");
  EXPECT_FALSE(refused.ok);
  EXPECT_THAT(refused.error, HasSubstr("too long for another process"));
  EXPECT_EQ(ask("/e", "still there").data, "still there");
}

TEST_F(TheBus, FailsARequestWhoseReplyIsLongerThanTheLimit) {
  const BusPartner partner(path, "/partner");
  partner.tell("serve size MT /size");
  EXPECT_EQ(ask("/size", std::to_string(kMaximumFrame - 5)).data.size(), kMaximumFrame - 5);
  const Answer refused = ask("/size", std::to_string(kMaximumFrame - 4));
  EXPECT_FALSE(refused.ok);
  EXPECT_THAT(refused.error, HasSubstr("too long for another process"));
}

TEST_F(TheBus, FailsWhatIsSentFromAChannelWhoseNameIsTooLong) {
  const BusPartner partner(path, "/partner");
  CommsChannel channel(std::string(kMaximumName + 1, 'n'), nullptr);
  EXPECT_THAT(ask(channel, "/partner", "descriptors").error, HasSubstr("65536 bytes, too many"));
}

TEST_F(TheBus, JoinsTwoProcessesThatConnectToEachOtherAtTheSameMoment) {
  // Which of the two ids is the smaller differs from round to round.
  for (int round = 0; round < 15; ++round) {
    const TempDirectory own;
    const BusPartner one(path, "/one");
    const BusPartner two(path, "/two");
    one.tell("serve echo MT /echo1");
    two.tell("serve echo MT /echo2");
    Barrier together(2);
    concurrently(2, [&](std::size_t thread) {
      together.arriveAndWait();
      for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(thread == 0 ? one.tell("ask /echo2|to two") : two.tell("ask /echo1|to one"),
                  thread == 0 ? "to two" : "to one");
      }
    });
  }
}

TEST_F(TheBus, ReachesAllOfManyProcesses) {
  std::vector<std::unique_ptr<BusPartner>> partners;
  for (int i = 0; i < 5; ++i) {
    partners.push_back(std::make_unique<BusPartner>(path, "/partner" + std::to_string(i)));
  }
  serve("/here", Mode::MT, [](const std::string& request) { return request; });
  concurrently(5, [&](std::size_t i) {
    const std::size_t next = (i + 1) % 5;
    EXPECT_EQ(partners[i]->tell("ask /partner" + std::to_string(next) + "|ask /here|round"),
              "round");
  });
}

}  // namespace
