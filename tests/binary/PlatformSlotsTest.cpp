#include <gmock/gmock.h>

#include "framework/AbstractProtocolRepository.h"
#include "framework/CommsChannelDataContainerMessage.h"
#include "framework/CommsChannelIfc.h"
#include "framework/Executable.h"
#include "framework/Proxy.h"
#include "framework/Semaphore.h"
#include "framework/Service.h"
#include "framework/ServiceRegistryIfc.h"
#include "tests/binary/VirtualTable.h"

namespace {

using testing::ElementsAre;
using zerva::callSlot;

using Calls = std::vector<std::string>;

class Recorder {
 public:
  explicit Recorder(Calls& calls) : calls_(calls) {}

 protected:
  std::nullptr_t note(const std::string& call) {
    calls_.push_back(call);
    return nullptr;
  }

 private:
  Calls& calls_;
};

class RecordingExecutable : public Executable, Recorder {
 public:
  explicit RecordingExecutable(Calls& calls) : Recorder(calls) {}
  ~RecordingExecutable() override { note("destructor"); }
  void init(SvcRTEContext*) override { note("init"); }
  void stop() override { note("stop"); }
  void timerExpired(int) override { note("timerExpired"); }
  void messageReceived(const CommsChannelDataContainerMessage&,
                       CommsChannelDataContainerMessage&) override {
    note("messageReceived");
  }
};

TEST(AnExecutable, HasItsOperationsInTheirOrder) {
  Calls calls;
  RecordingExecutable executable(calls);
  void* sut = static_cast<Executable*>(&executable);
  CommsChannelDataContainerMessage message;

  callSlot<void, SvcRTEContext*>(sut, 0, nullptr);
  callSlot<void>(sut, 1);
  callSlot<void, int>(sut, 2, 1);
  callSlot<void, const CommsChannelDataContainerMessage&, CommsChannelDataContainerMessage&>(
      sut, 3, message, message);

  EXPECT_THAT(calls, ElementsAre("init", "stop", "timerExpired", "messageReceived"));
}

TEST(AnExecutable, HasItsDestructorLast) {
  Calls calls;
  void* sut = static_cast<Executable*>(new RecordingExecutable(calls));

  zerva::destroyThroughSlot(sut, 5);

  EXPECT_THAT(calls, ElementsAre("destructor"));
}

class RecordingService : public Service, Recorder {
 public:
  explicit RecordingService(Calls& calls) : Recorder(calls) {}
  void init(SvcRTEContext*) override { note("init"); }
  void stop() override { note("stop"); }
  void run() override { note("run"); }
};

TEST(AService, BeginsAsAnExecutable) {
  Calls calls;
  RecordingService service(calls);
  void* sut = static_cast<Service*>(&service);

  callSlot<void, SvcRTEContext*>(sut, 0, nullptr);
  callSlot<void>(sut, 1);

  EXPECT_THAT(calls, ElementsAre("init", "stop"));
}

TEST(AServicesThread, RunsTheFirstOperationOfItsBody) {
  Calls calls;
  RecordingService service(calls);
  void* sut = static_cast<Threadable*>(&service);

  callSlot<void>(sut, 0);

  EXPECT_THAT(calls, ElementsAre("run"));
}

class RecordingProxy : public Proxy, Recorder {
 public:
  explicit RecordingProxy(Calls& calls) : Recorder(calls) {}
  void initialise(ProxyRequest*) override { note("initialise"); }
};

TEST(AProxy, HasItsInitialisationAfterWhatEveryExecutableHas) {
  Calls calls;
  RecordingProxy proxy(calls);
  void* sut = static_cast<Proxy*>(&proxy);

  callSlot<void, ProxyRequest*>(sut, 6, nullptr);

  EXPECT_THAT(calls, ElementsAre("initialise"));
}

class RecordingRegistry final : public ServiceRegistryIfc, Recorder {
 public:
  explicit RecordingRegistry(Calls& calls) : Recorder(calls) {}
  void registerInterface(const std::string&, const std::string&) override {
    note("registerInterface");
  }
  void unregisterInterface(const std::string&, const std::string&) override {
    note("unregisterInterface");
  }
  void registerProxy(const std::string&, const std::string&, const std::string&,
                     const std::string&) override {
    note("registerProxy");
  }
  void registerInvoker(const std::string&, const std::string&, const std::string&,
                       const std::string&) override {
    note("registerInvoker");
  }
};

TEST(TheRegistrysInterface, HasItsOperationsInTheirOrder) {
  Calls calls;
  RecordingRegistry registry(calls);
  void* sut = static_cast<ServiceRegistryIfc*>(&registry);
  const std::string text;
  using Text = const std::string&;

  callSlot<void, Text, Text>(sut, 0, text, text);
  callSlot<void, Text, Text>(sut, 1, text, text);
  callSlot<void, Text, Text, Text, Text>(sut, 2, text, text, text, text);
  callSlot<void, Text, Text, Text, Text>(sut, 3, text, text, text, text);

  EXPECT_THAT(calls, ElementsAre("registerInterface", "unregisterInterface", "registerProxy",
                                 "registerInvoker"));
}

class RecordingSemaphore : public Semaphore, Recorder {
 public:
  explicit RecordingSemaphore(Calls& calls) : Semaphore(1, 1, false), Recorder(calls) {}
  ~RecordingSemaphore() override { note("destructor"); }
  bool take(int timeout) override { return note("take " + std::to_string(timeout)), true; }
  bool give() override { return note("give"), true; }
};

TEST(ASemaphore, HasItsOperationsInTheirOrder) {
  Calls calls;
  RecordingSemaphore semaphore(calls);
  void* sut = static_cast<Semaphore*>(&semaphore);

  callSlot<bool, int>(sut, 0, -1);
  callSlot<bool>(sut, 1);

  EXPECT_THAT(calls, ElementsAre("take -1", "give"));
}

TEST(ASemaphore, HasItsDestructorLast) {
  Calls calls;
  void* sut = static_cast<Semaphore*>(new RecordingSemaphore(calls));

  zerva::destroyThroughSlot(sut, 3);

  EXPECT_THAT(calls, ElementsAre("destructor"));
}

class RecordingProtocols final : public AbstractProtocolRepository, Recorder {
 public:
  explicit RecordingProtocols(Calls& calls) : Recorder(calls) {}
  ProtocolAdapter* findProtocolAdapter(std::string protocol) override {
    return note("findProtocolAdapter " + protocol);
  }
};

TEST(AProtocolRepository, HasItsLookupFirst) {
  Calls calls;
  RecordingProtocols protocols(calls);
  void* sut = static_cast<AbstractProtocolRepository*>(&protocols);

  callSlot<ProtocolAdapter*, std::string>(sut, 0, "zerva_simple_rmi");

  EXPECT_THAT(calls, ElementsAre("findProtocolAdapter zerva_simple_rmi"));
}

}  // namespace
