#include <gmock/gmock.h>

#include "AbstractServiceRepository.h"
#include "ServiceRepository.h"
#include "tests/binary/VirtualTable.h"

namespace {

using testing::ElementsAre;
using zerva::callSlot;

using Calls = std::vector<std::string>;

class RecordingRepository : public AbstractServiceRepository {
 public:
  explicit RecordingRepository(Calls& calls) : calls_(calls) {}
  ~RecordingRepository() override { calls_.push_back("destructor"); }

  void addService(Service*, Dll*, std::string) override { note("addService of three"); }
  void addService(Service*, ServiceExecutor*, CommsChannelIfc*, Dll*, std::string) override {
    note("addService of five");
  }
  void addServiceProxy(Proxy*, Dll*, CommsChannelIfc*, ProxyRequest*, std::string&) override {
    note("addServiceProxy");
  }
  void addServiceInvoker(Invoker*, Dll*, std::string&, std::string&) override {
    note("addServiceInvoker");
  }
  Service* findService(std::string&, const std::string&) override { return note("findService"); }
  Proxy* findServiceProxy(std::string&) override { return note("findServiceProxy of one"); }
  Proxy* findServiceProxy(std::string&, std::string&, std::string&) override {
    return note("findServiceProxy of three");
  }
  Invoker* findServiceInvoker(std::string&, std::string&) override {
    return note("findServiceInvoker");
  }
  std::string findSvcChannel(Service*) override { return note("findSvcChannel"), ""; }
  bool containsService(Service*) override { return note("containsService"), false; }
  SvcData* getServiceData(Service*) override { return note("getServiceData"); }
  void shutdownAllServices() override { note("shutdownAllServices"); }
  void deleteAllServices() override { note("deleteAllServices"); }
  void deleteAllServiceInvokers() override { note("deleteAllServiceInvokers"); }
  void deleteAllServiceProxies() override { note("deleteAllServiceProxies"); }
  void deleteOneServiceProxy(Proxy*, std::string&) override { note("deleteOneServiceProxy"); }

 private:
  std::nullptr_t note(const char* call) {
    calls_.push_back(call);
    return nullptr;
  }

  Calls& calls_;
};

TEST(ARepositorysInterface, HasItsOperationsInTheirOrder) {
  Calls calls;
  RecordingRepository repository(calls);
  void* sut = static_cast<AbstractServiceRepository*>(&repository);
  std::string text;

  callSlot<void, Service*, Dll*, std::string>(sut, 0, nullptr, nullptr, "Ifc");
  callSlot<void, Service*, ServiceExecutor*, CommsChannelIfc*, Dll*, std::string>(
      sut, 1, nullptr, nullptr, nullptr, nullptr, "Ifc");
  callSlot<void, Proxy*, Dll*, CommsChannelIfc*, ProxyRequest*, std::string&>(
      sut, 2, nullptr, nullptr, nullptr, nullptr, text);
  callSlot<void, Invoker*, Dll*, std::string&, std::string&>(sut, 3, nullptr, nullptr, text, text);
  callSlot<Service*, std::string&, const std::string&>(sut, 4, text, text);
  callSlot<Proxy*, std::string&>(sut, 5, text);
  callSlot<Proxy*, std::string&, std::string&, std::string&>(sut, 6, text, text, text);
  callSlot<Invoker*, std::string&, std::string&>(sut, 7, text, text);
  callSlot<std::string, Service*>(sut, 8, nullptr);
  callSlot<bool, Service*>(sut, 9, nullptr);
  callSlot<SvcData*, Service*>(sut, 10, nullptr);
  for (std::size_t slot = 11; slot <= 14; ++slot) {
    callSlot<void>(sut, slot);
  }
  callSlot<void, Proxy*, std::string&>(sut, 15, nullptr, text);

  EXPECT_THAT(
      calls,
      ElementsAre("addService of three", "addService of five", "addServiceProxy",
                  "addServiceInvoker", "findService", "findServiceProxy of one",
                  "findServiceProxy of three", "findServiceInvoker", "findSvcChannel",
                  "containsService", "getServiceData", "shutdownAllServices", "deleteAllServices",
                  "deleteAllServiceInvokers", "deleteAllServiceProxies", "deleteOneServiceProxy"));
}

TEST(ARepositorysInterface, HasItsDestructorLast) {
  Calls calls;
  void* sut = static_cast<AbstractServiceRepository*>(new RecordingRepository(calls));

  zerva::destroyThroughSlot(sut, 17);

  EXPECT_THAT(calls, ElementsAre("destructor"));
}

TEST(TheRepository, AnswersThroughTheSameSlots) {
  ServiceRepository repository;
  void* sut = static_cast<AbstractServiceRepository*>(&repository);
  std::string ifc = "Ifc";
  std::string protocol = "protocol";
  auto* invoker = reinterpret_cast<Invoker*>(&repository);

  callSlot<void, Invoker*, Dll*, std::string&, std::string&>(sut, 3, invoker, nullptr, ifc,
                                                             protocol);
  Invoker* found = callSlot<Invoker*, std::string&, std::string&>(sut, 7, ifc, protocol);

  EXPECT_EQ(found, invoker);
}

TEST(TheRepository, BeginsWithItsInterface) {
  ServiceRepository sut;
  EXPECT_EQ(static_cast<void*>(static_cast<AbstractServiceRepository*>(&sut)),
            static_cast<void*>(&sut));
}

}  // namespace
