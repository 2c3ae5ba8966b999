// What becomes of what another process of the bus says, whatever that is.

#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

#include "host/live/CallsSoFar.h"
#include "host/live/HostStatusIfc.h"
#include "host/live/ProcessStatus.h"
#include "rmi/InvokerOf.h"
#include "runtime/libClientUtils/ProtocolRepository.h"
#include "runtime/libClientUtils/bus/Bus.h"
#include "tests/host/live/HostsOnABus.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::StartsWith;

using Json = nlohmann::json;

class Invoked final : public rmi::InvokerOf<HostStatusIfc> {
 public:
  Invoked() : InvokerOf(ZERVA_METHOD(HostStatusIfc::status), ZERVA_METHOD(HostStatusIfc::calls)) {}
};

/** As it was before calls were counted. */
class InvokedOfOld final : public rmi::InvokerOf<HostStatusIfc> {
 public:
  InvokedOfOld() : InvokerOf(ZERVA_METHOD(HostStatusIfc::status)) {}
};

/** What a process says of itself; any thread. */
class Told final : public ScriptedService, public HostStatusIfc {
 public:
  using Words = std::function<std::string()>;

  std::string status() override { return wordsOf(status_)(); }
  std::string calls() override { return wordsOf(calls_)(); }

  void sayStatus(Words words) { say(status_, std::move(words)); }
  void sayCalls(Words words) { say(calls_, std::move(words)); }

  static std::string usualStatus() {
    ProcessStatus status;
    status.process = ::getpid();
    status.file = "told.directives";
    status.services.emplace_back();
    status.services.back().channel = "/told";
    status.services.back().interfaces = "ToldIfc";
    return writeProcessStatus(status);
  }
  static std::string usualCalls() { return writeCallsSoFar({}); }

 private:
  Words wordsOf(const Words& words) const {
    const std::lock_guard lock(mutex_);
    return words;
  }
  void say(Words& words, Words others) {
    const std::lock_guard lock(mutex_);
    words = std::move(others);
  }

  mutable std::mutex mutex_;
  Words status_ = usualStatus;  // guarded by mutex_
  Words calls_ = usualCalls;    // guarded by mutex_
};

/** This process is on the bus, and tells how it is. */
class APeer : public HostsOnABus {
 protected:
  APeer() {
    world.context.invoker = [this](const std::string&, const std::string&) {
      return invoker.load();
    };
    world.context.adapter = [this](std::string protocol) {
      return protocols.findProtocolAdapter(protocol);
    };
    world.run(&told, HostStatusIfc::channelOf(::getpid()), Mode::MT);
  }
  ~APeer() override { world.end(); }

  Seen graph(std::vector<std::string> words = {}) const {
    words.insert(words.begin(), {"--live", "--json"});
    return zerva("graph", words);
  }

  std::string named() const { return "process " + std::to_string(::getpid()); }

  const Bus joined{bus};
  ProtocolRepository protocols;
  Invoked invokerOfNow;
  InvokedOfOld invokerOfOld;
  std::atomic<Invoker*> invoker = &invokerOfNow;
  Told told;
  ExecutorWorld world;
};

TEST_F(APeer, ThatTellsAll_IsInTheGraph) {
  const Seen sut = graph();
  EXPECT_EQ(sut.code, 0) << sut.errors;
  EXPECT_EQ(Json::parse(sut.output).at("nodes").at(0).at("looked_at"), true);
}

TEST_F(APeer, ThatDoesNotCountCalls_IsInTheGraphWithWhatItHas) {
  invoker = &invokerOfOld;
  const Seen sut = graph();
  EXPECT_EQ(sut.code, 3);
  EXPECT_THAT(sut.errors, StartsWith("zerva: " + named() + ", its calls are not known: "));
  EXPECT_THAT(sut.errors, HasSubstr("'calls' is not known"));
  const Json node = Json::parse(sut.output).at("nodes").at(0);
  EXPECT_EQ(node.at("name"), "/told");
  EXPECT_EQ(node.at("declared"), true);
  EXPECT_EQ(node.at("looked_at"), false);
  EXPECT_EQ(node.at("interfaces").at(0).at("name"), "ToldIfc");
}

TEST_F(APeer, ThatStopsBetweenItsTwoAnswers_IsInTheGraphWithWhatItHas) {
  told.sayCalls([]() -> std::string {
    std::this_thread::sleep_for(1s);
    return {};
  });
  const Seen sut = graph({"--timeout", "0.3"});
  EXPECT_EQ(sut.code, 3);
  EXPECT_THAT(sut.errors, HasSubstr("its calls are not known: "));
  EXPECT_EQ(Json::parse(sut.output).at("nodes").at(0).at("name"), "/told");
}

TEST_F(APeer, HasItsTimeForEachOfItsAnswers) {
  const auto slowly = [](std::string (*what)()) {
    return [what] {
      std::this_thread::sleep_for(1200ms);
      return what();
    };
  };
  told.sayStatus(slowly(&Told::usualStatus));
  told.sayCalls(slowly(&Told::usualCalls));
  EXPECT_EQ(graph({"--timeout", "2"}).code, 0);
}

TEST_F(APeer, ThatSaysWhatNobodyCanRead_IsToldOfInALineThatIsNotTooLong) {
  told.sayStatus([] { return "\"" + std::string(100000, 'x'); });
  for (const char* verb : {"graph", "status"}) {
    const bool isGraph = std::string(verb) == "graph";
    const Seen sut = isGraph ? graph() : zerva(verb, {"/any"});
    EXPECT_EQ(sut.code, isGraph ? 3 : 4);
    EXPECT_THAT(sut.errors, HasSubstr(named()));
    EXPECT_LT((sut.errors + sut.output).size(), 2000U);
  }
}

TEST_F(APeer, ThatThrowsWhatNobodyCanShow_IsToldOfInALineThatCan) {
  told.sayStatus([]() -> std::string { throw std::runtime_error("\x1b[31m\nred"); });
  const Seen sut = graph();
  EXPECT_EQ(sut.code, 3);
  EXPECT_THAT(sut.errors, HasSubstr("?[31m?red"));
}

TEST_F(APeer, ThatSaysAbsurdNumbers_IsNotBelieved) {
  for (const char* number : {"1e+300", "-1", "18446744073709551615", "null", "\"1\""}) {
    told.sayCalls([number] {
      return R"({"calls":[],"failed_others":0,"others":)" + std::string(number) + "}";
    });
    const Seen sut = graph();
    EXPECT_EQ(sut.code, 3) << number;
    EXPECT_THAT(sut.errors, HasSubstr("its calls are not known: these are no calls: " +
                                      std::string(number) + " is no such number"));
  }
}

TEST_F(APeer, ThatIsKilledWhileItIsAsked_IsNotWaitedFor) {
  ChildProcess& host = startAll(kPlainLine);
  ASSERT_TRUE(host.stop());
  ChildProcess command(build + "/bin/zerva",
                       {"graph", "--bus", bus, "--live", "--json", "--timeout", "60"});
  ASSERT_TRUE(waitUntil([&] { return joined.processes().size() == 2; }));
  std::this_thread::sleep_for(300ms);
  host.signal(SIGKILL);
  EXPECT_EQ(command.wait(), 3);
  EXPECT_THAT(command.errors(), HasSubstr("process " + std::to_string(host.id()) +
                                          ", not looked at: it does not answer: "));
}

TEST_F(APeer, ThatOnlyLooks_IsNotToldToBeStartedOtherwise) {
  const ChildProcess watching(build + "/bin/zerva", {"watch", "--bus", bus});
  ASSERT_TRUE(waitUntil([&] { return joined.processes().size() == 1; }));
  const Seen sut = graph();
  EXPECT_EQ(sut.code, 0);
  EXPECT_EQ(sut.errors, "zerva: process " + std::to_string(watching.id()) +
                            ", not looked at: it serves nothing and does not tell how it is\n");
}

}  // namespace
}  // namespace zerva
