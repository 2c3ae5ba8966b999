#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>

#include "framework/CallException.h"
#include "framework/DecodeException.h"
#include "framework/InvokeInterceptor.h"
#include "framework/ProxyRequestImpl.h"
#include "framework/TargetInvoker.h"
#include "rmi/InvokerOf.h"
#include "rmi/ProxyOf.h"
#include "runtime/libClientUtils/ProtocolRepository.h"
#include "runtime/libClientUtils/ReplyTimeout.h"
#include "tests/support/Barrier.h"
#include "tests/support/Concurrently.h"
#include "tests/support/ExecutorWorld.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StrEq;
using testing::ThrowsMessage;
using zerva::concurrently;

class WindSensor {
 public:
  virtual double speed(int station) = 0;
  virtual void rename(const std::string& from, std::string to) = 0;
  virtual std::vector<std::string> names() const = 0;

 protected:
  ~WindSensor() = default;
};

class WindSensorProxy : public zerva::rmi::ProxyOf<WindSensor> {
 public:
  double speed(int station) override { return call(ZERVA_METHOD(WindSensor::speed), station); }
  void rename(const std::string& from, std::string to) override {
    call(ZERVA_METHOD(WindSensor::rename), from, to);
  }
  std::vector<std::string> names() const override { return call(ZERVA_METHOD(WindSensor::names)); }
};

class WindSensorInvoker : public zerva::rmi::InvokerOf<WindSensor> {
 public:
  WindSensorInvoker()
      : InvokerOf(ZERVA_METHOD(WindSensor::speed), ZERVA_METHOD(WindSensor::rename),
                  ZERVA_METHOD(WindSensor::names)) {}
};

class WindSensorService : public Service, public WindSensor {
 public:
  void init(SvcRTEContext* /*context*/) override {}
  double speed(int station) override {
    if (station < 0) throw std::invalid_argument("no station " + std::to_string(station));
    if (onSpeed) onSpeed();
    return station + 0.5;
  }
  void rename(const std::string& from, std::string to) override {
    renamed = from + " is now " + to;
  }
  std::vector<std::string> names() const override { return {"pier", "tower"}; }

  std::function<void()> onSpeed;
  std::string renamed;
};

/** One service and a proxy for it, in a protocol. */
class ACall : public testing::TestWithParam<const char*> {
 protected:
  ACall() {
    world.context.invoker = [this](const std::string& interface, const std::string& protocol) {
      asked.add(interface + " in " + protocol);
      return &invoker;
    };
    world.context.adapter = [this](const std::string& protocol) {
      return protocols.findProtocolAdapter(protocol);
    };
    sut.initialise(&request);
  }
  ~ACall() override { world.end(); }

  /** A proxy more, with a request of its own. */
  struct Proxied {
    Proxied(ACall& call, CommsChannel& channel, const std::string& interface = "WindSensor")
        : request(&channel, "/wind", interface, GetParam(),
                  call.protocols.findProtocolAdapter(GetParam()), "", &call.world.context) {
      proxy.initialise(&request);
    }

    ProxyRequestImpl request;
    WindSensorProxy proxy;
  };

  void run(Mode mode = Mode::ST) { world.run(&service, "/wind", mode, &dispatcher); }

  ProtocolRepository protocols;
  WindSensorInvoker invoker;
  WindSensorService service;
  InvokeInterceptorDispatcher dispatcher;
  ExecutorWorld world;
  Journal asked;
  CommsChannel channel{"/wind_proxy", nullptr};
  ProxyRequestImpl request{
      &channel, "/wind",       "WindSensor", GetParam(), protocols.findProtocolAdapter(GetParam()),
      "",       &world.context};
  WindSensorProxy sut;
};

INSTANTIATE_TEST_SUITE_P(InEachProtocol, ACall,
                         testing::Values("zerva_simple_rmi", "zerva_svc_xml"),
                         [](const auto& param) { return std::string(param.param); });

TEST_P(ACall, GivesTheServicesResult) {
  run();
  EXPECT_EQ(sut.speed(3), 3.5);
}

TEST_P(ACall, CarriesAllItsArguments) {
  run();
  sut.rename("west", "east");
  EXPECT_EQ(service.renamed, "west is now east");
}

TEST_P(ACall, OfAConstMethodGivesAList) {
  run();
  EXPECT_THAT(sut.names(), ElementsAre("pier", "tower"));
}

TEST_P(ACall, AsksForTheInvokerOfItsInterfaceAndProtocolOnce) {
  run();
  sut.names();
  sut.names();
  EXPECT_THAT(asked.entries(), ElementsAre(std::string("WindSensor in ") + GetParam()));
}

TEST_P(ACall, OfAnotherInterfaceOfTheSameService_AsksForTheInvokerOfThat) {
  Proxied vane(*this, channel, "Vane");
  run();
  for (int i = 0; i < 2; ++i) {
    sut.names();
    vane.proxy.names();
  }
  EXPECT_THAT(asked.entries(), ElementsAre(std::string("WindSensor in ") + GetParam(),
                                           std::string("Vane in ") + GetParam()));
}

TEST_P(ACall, ThatFoundNoInvoker_AsksAgainTheNextTime) {
  int lookUps = 0;
  world.context.invoker = [&](const std::string&, const std::string&) -> Invoker* {
    return ++lookUps > 1 ? &invoker : nullptr;
  };
  run();
  EXPECT_THROW(sut.names(), CallException);
  EXPECT_THAT(sut.names(), ElementsAre("pier", "tower"));
  EXPECT_THAT(sut.names(), ElementsAre("pier", "tower"));
  EXPECT_EQ(lookUps, 2);
}

TEST_P(ACall, ToAServiceThatThrows_SaysWhatItThrew) {
  run();
  EXPECT_THAT([this] { sut.speed(-1); },
              ThrowsMessage<CallException>(StrEq("call of WindSensor.speed on channel '/wind' "
                                                 "failed: the service threw: no station -1")));
}

TEST_P(ACall, ToAServiceThatCannotDecodeSomethingItself_SaysThatTheServiceThrew) {
  service.onSpeed = [] { throw DecodeException("a broken file"); };
  run();
  EXPECT_THAT([this] { sut.speed(1); },
              ThrowsMessage<CallException>(HasSubstr("failed: the service threw: a broken file")));
}

TEST_P(ACall, ThatItsInvokerRefusesWithoutAText_HasFailedAllTheSame) {
  class Refusing : public Invoker {
    void invoke(Executable&, ProtocolAdapter&, const std::string&, std::string&) override {
      throw DecodeException("");
    }
  } refusing;
  world.context.invoker = [&](const std::string&, const std::string&) { return &refusing; };
  run();
  EXPECT_THAT([this] { sut.rename("a", "b"); },
              ThrowsMessage<CallException>(HasSubstr("refused without a reason")));
  world.end();
}

TEST_P(ACall, ThatFails_NamesItsPartsOneByOne) {
  try {
    sut.speed(1);
    FAIL() << "nobody serves the channel";
  } catch (const CallException& exception) {
    EXPECT_EQ(exception.getInterface(), "WindSensor");
    EXPECT_EQ(exception.getMethod(), "speed");
    EXPECT_EQ(exception.getChannel(), "/wind");
    EXPECT_EQ(exception.getCause(), "nobody serves channel '/wind'");
  }
}

TEST_P(ACall, WithoutAnInvoker_SaysSo) {
  run();
  world.context.invoker = [](const std::string&, const std::string&) { return nullptr; };
  EXPECT_THAT([this] { sut.names(); },
              ThrowsMessage<CallException>(HasSubstr("there is no invoker for interface "
                                                     "'WindSensor' and protocol")));
}

TEST_P(ACall, WhoseInvokerIsNotFoundForAnException_SaysWhich) {
  run();
  world.context.invoker = [](const std::string&, const std::string&) -> Invoker* {
    throw std::out_of_range("too short");
  };
  EXPECT_THAT([this] { sut.names(); },
              ThrowsMessage<CallException>(HasSubstr("looking up its invoker failed: too short")));
}

TEST_P(ACall, InAProtocolThatTheServiceDoesNotKnow_SaysSo) {
  run();
  world.context.adapter = [](const std::string&) { return nullptr; };
  EXPECT_THAT([this] { sut.names(); },
              ThrowsMessage<CallException>(HasSubstr("is not known there")));
}

TEST_P(ACall, OfAMethodThatTheInvokerDoesNotKnow_SaysSo) {
  run();
  zerva::rmi::InvokerOf<WindSensor> empty;
  world.context.invoker = [&](const std::string&, const std::string&) { return &empty; };
  EXPECT_THAT([this] { sut.names(); },
              ThrowsMessage<CallException>(HasSubstr("method 'names' is not known")));
}

TEST_P(ACall, WhoseArgumentsAreOthers_SaysThatTheyDidNotDecode) {
  run();
  zerva::rmi::Received<double> result;
  EXPECT_THAT(
      [&] { request.call("speed", zerva::rmi::Sent(std::make_tuple(std::string("x"))), result); },
      ThrowsMessage<CallException>(HasSubstr("failed: the arguments did not decode: ")));
}

TEST_P(ACall, WhoseResultIsAnother_SaysThatItDidNotDecode) {
  run();
  zerva::rmi::Received<bool> result;
  EXPECT_THAT([&] { request.call("speed", zerva::rmi::Sent(std::make_tuple(1)), result); },
              ThrowsMessage<CallException>(HasSubstr("failed: the result did not decode: ")));
}

TEST_P(ACall, ToAServiceOfAnotherInterface_SaysSo) {
  ScriptedService other;
  world.run(&other, "/wind", Mode::ST);
  EXPECT_THAT([this] { sut.names(); },
              ThrowsMessage<CallException>(HasSubstr("does not have the interface")));
  world.end();
}

TEST_P(ACall, ThatNobodyAnswers_FailsWhenItsTimeIsOver) {
  zerva::Gate gate;
  service.onSpeed = [&] { gate.wait(); };
  run();
  const auto before = zerva::replyTimeout();
  zerva::setReplyTimeout(std::chrono::milliseconds(20));
  EXPECT_THAT([this] { sut.speed(1); },
              ThrowsMessage<CallException>(HasSubstr("did not answer in time")));
  zerva::setReplyTimeout(before);
  gate.open();
  world.end();
}

TEST_P(ACall, ThroughOneProxyByManyThreads_GivesEachItsOwnResult) {
  run(Mode::MT);
  std::atomic<int> wrong{0};
  concurrently(8, [&](std::size_t number) {
    const int thread = static_cast<int>(number);
    for (int i = 0; i < 50; ++i) {
      if (sut.speed(thread * 1000 + i) != thread * 1000 + i + 0.5) ++wrong;
    }
  });
  EXPECT_EQ(wrong, 0);
}

TEST_P(ACall, OfItsOwnServiceWhileItIsServed_IsServedNested) {
  run();
  service.onSpeed = [this] { service.renamed = sut.names().front(); };
  sut.speed(1);
  EXPECT_EQ(service.renamed, "pier");
}

class Watching final : public InvokeInterceptor {
 public:
  void invoked(const Invocation& invocation) override {
    seen.add(invocation.interface + "." + invocation.method + " from " + invocation.caller + ": " +
             invocation.error);
  }
  Journal seen;
};

TEST_P(ACall, IsSeenByInterceptorsWithInterfaceAndMethod) {
  Watching watching;
  dispatcher.addInterceptor(&watching);
  run();
  sut.speed(1);
  EXPECT_THAT(watching.seen.entries(), ElementsAre("WindSensor.speed from /wind_proxy: "));
  world.end();
}

TEST_P(ACall, WhoseInvokerHasEnded_AsksForAnother) {
  auto first = std::make_unique<WindSensorInvoker>();
  Invoker* now = first.get();
  int lookUps = 0;
  world.context.invoker = [&](const std::string&, const std::string&) {
    ++lookUps;
    return now;
  };
  run();
  EXPECT_EQ(sut.speed(1), 1.5);
  now = &invoker;
  first.reset();
  EXPECT_EQ(sut.speed(2), 2.5);
  EXPECT_EQ(sut.speed(3), 3.5);
  EXPECT_EQ(lookUps, 2);
  world.end();
}

TEST_P(ACall, WhoseAdapterIsReplaced_AsksForTheOther) {
  int lookUps = 0;
  world.context.adapter = [&](const std::string& protocol) {
    ++lookUps;
    return protocols.findProtocolAdapter(protocol);
  };
  run();
  EXPECT_EQ(sut.speed(1), 1.5);
  protocols.addProtocolAdapter(protocols.findProtocolAdapter(GetParam()));
  EXPECT_EQ(sut.speed(2), 2.5);
  EXPECT_EQ(lookUps, 2);
  world.end();
}

/** Counts how often it is asked for a target. */
class CountingInvoker final : public TargetInvoker {
 public:
  explicit CountingInvoker(WindSensorInvoker& real) : real_(real) {}
  void invoke(Executable& service, ProtocolAdapter& adapter, const std::string& call,
              std::string& reply) override {
    ++invoked;
    real_.invoke(service, adapter, call, reply);
  }
  void* targetOf(Executable& service) override {
    ++asked;
    return real_.targetOf(service);
  }
  void invokeTarget(void* target, ProtocolAdapter& adapter, const std::string& call,
                    std::string& reply) override {
    real_.invokeTarget(target, adapter, call, reply);
  }

  std::atomic<int> asked{0};
  std::atomic<int> invoked{0};

 private:
  WindSensorInvoker& real_;
};

TEST_P(ACall, ThroughAnInvokerThatFindsTargets_AsksForTheTargetOnce) {
  CountingInvoker counting(invoker);
  world.context.invoker = [&](const std::string&, const std::string&) { return &counting; };
  run();
  for (int station = 0; station < 3; ++station) EXPECT_EQ(sut.speed(station), station + 0.5);
  EXPECT_EQ(counting.asked, 1);
  EXPECT_EQ(counting.invoked, 0);
  world.end();
}

TEST_P(ACall, ThroughAnInvokerThatFindsNoTargets_IsMadeToTheService) {
  class Plain final : public Invoker {
   public:
    explicit Plain(Invoker& real) : real_(real) {}
    void invoke(Executable& service, ProtocolAdapter& adapter, const std::string& call,
                std::string& reply) override {
      real_.invoke(service, adapter, call, reply);
    }

   private:
    Invoker& real_;
  } plain(invoker);
  world.context.invoker = [&](const std::string&, const std::string&) { return &plain; };
  run();
  for (int station = 0; station < 3; ++station) EXPECT_EQ(sut.speed(station), station + 0.5);
  world.end();
}

TEST_P(ACall, WhileTheServiceIsBeingMade_BindsNoLaterCallToWhatWasMade) {
  WindSensorService failed;
  int attempts = 0;
  world.context.real = [&](const std::string&, const std::string&) { return &failed; };
  world.context.make = [&]() -> Service* {
    if (++attempts > 1) return &service;
    sut.rename("it", "nothing");
    return nullptr;
  };
  world.runLazy("/wind", Mode::ST);
  EXPECT_THROW(sut.names(), CallException);
  sut.rename("west", "east");
  EXPECT_EQ(failed.renamed, "it is now nothing");
  EXPECT_EQ(service.renamed, "west is now east");
  world.end();
}

/** A channel of somebody else's, who has replaced what the platform's own one does. */
class ForeignChannel final : public CommsChannel {
 public:
  using CommsChannel::CommsChannel;
  bool send(CommsChannelDataContainerMessage& message) override {
    seen.add("send to " + message.getChannel());
    return CommsChannel::send(message);
  }
  bool receiveReply(CommsChannelDataContainerMessage& message, long requestId) override {
    seen.add("receive");
    return CommsChannel::receiveReply(message, requestId);
  }
  Journal seen;
};

TEST_P(ACall, ThroughAChannelOfSomebodyElse_GoesTheWayOfThat) {
  ForeignChannel foreign("/foreign", nullptr);
  Proxied other(*this, foreign);
  EXPECT_THAT([&] { other.proxy.speed(1); },
              ThrowsMessage<CallException>(HasSubstr("nobody serves channel '/wind'")));
  run();
  EXPECT_EQ(other.proxy.speed(3), 3.5);
  EXPECT_THAT(foreign.seen.entries(),
              ElementsAre("send to /wind", "receive", "send to /wind", "receive"));
}

/** Sends under another id, and answers with a message of its own. */
class RenumberingChannel final : public CommsChannel {
 public:
  using CommsChannel::CommsChannel;
  bool send(CommsChannelDataContainerMessage& message) override {
    message.setRequestId(message.getRequestId() + 1000);
    return CommsChannel::send(message);
  }
  bool receiveReply(CommsChannelDataContainerMessage& message, long requestId) override {
    if (requestId <= 1000) return false;
    CommsChannelDataContainerMessage reply;
    const bool received = CommsChannel::receiveReply(reply, requestId);
    message = std::move(reply);
    return received;
  }
};

TEST_P(ACall, ThroughAChannelThatMakesMessagesOfItsOwn_GetsTheReply) {
  RenumberingChannel foreign("/foreign", nullptr);
  Proxied other(*this, foreign);
  run();
  EXPECT_EQ(other.proxy.speed(3), 3.5);
}

class SilentChannel final : public CommsChannel {
 public:
  using CommsChannel::CommsChannel;
  bool send(CommsChannelDataContainerMessage& /*message*/) override { return false; }
  bool receiveReply(CommsChannelDataContainerMessage& /*message*/, long /*requestId*/) override {
    return false;
  }
};

TEST_P(ACall, ThatFailsWithoutAReason_SaysThat) {
  SilentChannel silent("/silent", nullptr);
  Proxied other(*this, silent);
  EXPECT_THAT([&] { other.proxy.speed(1); },
              ThrowsMessage<CallException>(HasSubstr("failed: no reason was given")));
}

TEST(ACallWithoutAnAdapter, SaysThatTheProtocolIsNotKnown) {
  CommsChannel channel("/proxy", nullptr);
  ProxyRequestImpl request(&channel, "/wind", "WindSensor", "unheard_of", nullptr, "", nullptr);
  WindSensorProxy sut;
  sut.initialise(&request);
  EXPECT_THAT([&] { sut.names(); },
              ThrowsMessage<CallException>(HasSubstr("protocol 'unheard_of' is not known here")));
}

}  // namespace
