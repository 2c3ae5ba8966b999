#include <gmock/gmock.h>

#include "FrameworkContext.h"
#include "SvcRTEContext.h"
#include "tests/binary/VirtualTable.h"

namespace {

using testing::ElementsAre;
using zerva::callSlot;

using Calls = std::vector<std::string>;

class RecordingContext : public SvcRTEContext {
 public:
  explicit RecordingContext(Calls& calls) : calls_(calls) {}
  ~RecordingContext() override { calls_.push_back("destructor"); }

  Executable* findExecutable(std::string&) override { return note("findExecutable"); }
  Proxy* findProxy(std::string&, std::string&) override { return note("findProxy"); }
  Executable* findService(const std::string&) override { return note("findService"); }
  int createTimer(Executable*, int) override { return note("createTimer"), 0; }
  bool startTimer(int) override { return note("startTimer"), false; }
  bool stopTimer(int) override { return note("stopTimer"), false; }
  bool resetTimer(int) override { return note("resetTimer"), false; }
  bool deleteTimer(int) override { return note("deleteTimer"), false; }
  bool timerRunning(int) override { return note("timerRunning"), false; }
  void shutdown() override { note("shutdown"); }
  void removeAndDeleteProxyFromRepository(Proxy*, std::string&) override {
    note("removeAndDeleteProxyFromRepository");
  }

 private:
  std::nullptr_t note(const char* call) {
    calls_.push_back(call);
    return nullptr;
  }

  Calls& calls_;
};

TEST(TheRunTimeContextOfAService, HasItsOperationsInTheirOrder) {
  Calls calls;
  RecordingContext context(calls);
  void* sut = static_cast<SvcRTEContext*>(&context);
  std::string text;

  callSlot<Executable*, std::string&>(sut, 0, text);
  callSlot<Proxy*, std::string&, std::string&>(sut, 1, text, text);
  callSlot<Executable*, const std::string&>(sut, 2, text);
  callSlot<int, Executable*, int>(sut, 3, nullptr, 1);
  callSlot<bool, int>(sut, 4, 1);
  callSlot<bool, int>(sut, 5, 1);
  callSlot<bool, int>(sut, 6, 1);
  callSlot<bool, int>(sut, 7, 1);
  callSlot<bool, int>(sut, 8, 1);
  callSlot<void>(sut, 9);
  callSlot<void, Proxy*, std::string&>(sut, 10, nullptr, text);

  EXPECT_THAT(calls, ElementsAre("findExecutable", "findProxy", "findService", "createTimer",
                                 "startTimer", "stopTimer", "resetTimer", "deleteTimer",
                                 "timerRunning", "shutdown", "removeAndDeleteProxyFromRepository"));
}

TEST(TheRunTimeContextOfAService, HasItsDestructorLast) {
  Calls calls;
  void* sut = static_cast<SvcRTEContext*>(new RecordingContext(calls));

  zerva::destroyThroughSlot(sut, 12);

  EXPECT_THAT(calls, ElementsAre("destructor"));
}

TEST(TheSharedContext, IsTheBeginningOfAServicesOne) {
  Calls calls;
  RecordingContext context(calls);
  void* sut = static_cast<Context*>(&context);
  std::string text;

  callSlot<Executable*, std::string&>(sut, 0, text);

  EXPECT_THAT(calls, ElementsAre("findExecutable"));
  EXPECT_EQ(sut, static_cast<SvcRTEContext*>(&context));
}

class RecordingFramework : public FrameworkContext {
 public:
  explicit RecordingFramework(Calls& calls) : calls_(calls) {}

  Invoker* findInvoker(std::string&, std::string&) override { return note("findInvoker"); }
  Proxy* findProxy(std::string&, std::string&) override { return note("findProxy of two"); }
  Proxy* findProxy(std::string&, std::string&, std::string&) override {
    return note("findProxy of three");
  }
  void deleteProxy(Proxy*) override { note("deleteProxy"); }
  std::string findChannel(Executable*) override { return note("findChannel"), "channel"; }
  Service* initialiseService(ServiceExecutor*, std::string lib, std::string creator,
                             CommsChannelIfc*, std::string ifc) override {
    return note("initialiseService " + lib + " " + creator + " " + ifc);
  }
  ProtocolAdapter* findProtocolAdapter(std::string&) override {
    return note("findProtocolAdapter");
  }
  void removeAndDeleteProxyFromRepository(Proxy*, std::string&) override {
    note("removeAndDeleteProxyFromRepository");
  }
  Service* findRealService(const std::string&, const std::string&) override {
    return note("findRealService");
  }

 protected:
  ~RecordingFramework() = default;

 private:
  std::nullptr_t note(const std::string& call) {
    calls_.push_back(call);
    return nullptr;
  }

  Calls& calls_;
};

class FinalFramework final : public RecordingFramework {
  using RecordingFramework::RecordingFramework;
};

TEST(TheFrameworksContext, HasItsOperationsInTheirOrder) {
  Calls calls;
  FinalFramework framework(calls);
  void* sut = static_cast<FrameworkContext*>(&framework);
  std::string text;

  callSlot<Invoker*, std::string&, std::string&>(sut, 0, text, text);
  callSlot<Proxy*, std::string&, std::string&>(sut, 1, text, text);
  callSlot<Proxy*, std::string&, std::string&, std::string&>(sut, 2, text, text, text);
  callSlot<void, Proxy*>(sut, 3, nullptr);
  callSlot<std::string, Executable*>(sut, 4, nullptr);
  callSlot<Service*, ServiceExecutor*, std::string, std::string, CommsChannelIfc*, std::string>(
      sut, 5, nullptr, "lib", "creator", nullptr, "ifc");
  callSlot<ProtocolAdapter*, std::string&>(sut, 6, text);
  callSlot<void, Proxy*, std::string&>(sut, 7, nullptr, text);
  callSlot<Service*, const std::string&, const std::string&>(sut, 8, text, text);

  EXPECT_THAT(calls,
              ElementsAre("findInvoker", "findProxy of two", "findProxy of three", "deleteProxy",
                          "findChannel", "initialiseService lib creator ifc", "findProtocolAdapter",
                          "removeAndDeleteProxyFromRepository", "findRealService"));
}

TEST(TheFrameworksContext, HasNoVirtualDestructor) {
  EXPECT_FALSE(std::has_virtual_destructor_v<FrameworkContext>);
}

}  // namespace
