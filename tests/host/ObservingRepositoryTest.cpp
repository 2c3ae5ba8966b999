#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/ObservingRepository.h"
#include "host/RepositoryObserver.h"

namespace zerva {
namespace {

using testing::InSequence;
using testing::Ref;
using testing::Return;
using testing::StrictMock;

class RepositoryMock : public AbstractServiceRepository {
 public:
  MOCK_METHOD(void, addService, (Service*, Dll*, std::string), (override));
  MOCK_METHOD(void, addService, (Service*, ServiceExecutor*, CommsChannelIfc*, Dll*, std::string),
              (override));
  MOCK_METHOD(void, addServiceProxy, (Proxy*, Dll*, CommsChannelIfc*, ProxyRequest*, std::string&),
              (override));
  MOCK_METHOD(void, addServiceInvoker, (Invoker*, Dll*, std::string&, std::string&), (override));
  MOCK_METHOD(Service*, findService, (std::string&, const std::string&), (override));
  MOCK_METHOD(Proxy*, findServiceProxy, (std::string&), (override));
  MOCK_METHOD(Proxy*, findServiceProxy, (std::string&, std::string&, std::string&), (override));
  MOCK_METHOD(Invoker*, findServiceInvoker, (std::string&, std::string&), (override));
  MOCK_METHOD(std::string, findSvcChannel, (Service*), (override));
  MOCK_METHOD(bool, containsService, (Service*), (override));
  MOCK_METHOD(SvcData*, getServiceData, (Service*), (override));
  MOCK_METHOD(void, shutdownAllServices, (), (override));
  MOCK_METHOD(void, deleteAllServices, (), (override));
  MOCK_METHOD(void, deleteAllServiceInvokers, (), (override));
  MOCK_METHOD(void, deleteAllServiceProxies, (), (override));
  MOCK_METHOD(void, deleteOneServiceProxy, (Proxy*, std::string&), (override));
};

class ObserverMock : public RepositoryObserver {
 public:
  virtual ~ObserverMock() = default;
  MOCK_METHOD(void, serviceAdded, (const Service*, const CommsChannelIfc*, const std::string&),
              (override));
  MOCK_METHOD(void, stopped, (), (override));
  MOCK_METHOD(void, deleted, (), (override));
};

/** An address that is handed through and never followed. */
template <typename Object>
Object* address(std::uintptr_t number) {
  return reinterpret_cast<Object*>(number);
}

class AnObservingRepository : public testing::Test {
 protected:
  StrictMock<RepositoryMock> repository;
  StrictMock<ObserverMock> observer;
  ObservingRepository sut{repository, observer};

  Service* const service = address<Service>(8);
  ServiceExecutor* const executor = address<ServiceExecutor>(16);
  CommsChannelIfc* const channel = address<CommsChannelIfc>(24);
  Dll* const dll = address<Dll>(32);
  Proxy* const proxy = address<Proxy>(40);
  ProxyRequest* const request = address<ProxyRequest>(48);
  Invoker* const invoker = address<Invoker>(56);
  std::string first = "first";
  std::string second = "second";
  std::string third = "third";
};

TEST_F(AnObservingRepository, RecordsALegacyServiceBeforeItTells) {
  const InSequence order;
  EXPECT_CALL(repository, addService(service, dll, "A B"));
  EXPECT_CALL(observer, serviceAdded(service, nullptr, "A B"));
  sut.addService(service, dll, "A B");
}

TEST_F(AnObservingRepository, RecordsAServiceBeforeItTells) {
  const InSequence order;
  EXPECT_CALL(repository, addService(service, executor, channel, dll, "A"));
  EXPECT_CALL(observer, serviceAdded(service, channel, "A"));
  sut.addService(service, executor, channel, dll, "A");
}

TEST_F(AnObservingRepository, HandsTheOtherRecordsOn) {
  EXPECT_CALL(repository, addServiceProxy(proxy, dll, channel, request, Ref(first)));
  sut.addServiceProxy(proxy, dll, channel, request, first);
  EXPECT_CALL(repository, addServiceInvoker(invoker, dll, Ref(first), Ref(second)));
  sut.addServiceInvoker(invoker, dll, first, second);
}

TEST_F(AnObservingRepository, HandsLookupsOnAndTheirResultsBack) {
  SvcData data{};
  EXPECT_CALL(repository, findService(Ref(first), Ref(second))).WillOnce(Return(service));
  EXPECT_EQ(sut.findService(first, second), service);
  EXPECT_CALL(repository, findServiceProxy(Ref(first))).WillOnce(Return(proxy));
  EXPECT_EQ(sut.findServiceProxy(first), proxy);
  EXPECT_CALL(repository, findServiceProxy(Ref(first), Ref(second), Ref(third)))
      .WillOnce(Return(proxy));
  EXPECT_EQ(sut.findServiceProxy(first, second, third), proxy);
  EXPECT_CALL(repository, findServiceInvoker(Ref(first), Ref(second))).WillOnce(Return(invoker));
  EXPECT_EQ(sut.findServiceInvoker(first, second), invoker);
  EXPECT_CALL(repository, findSvcChannel(service)).WillOnce(Return("channel"));
  EXPECT_EQ(sut.findSvcChannel(service), "channel");
  EXPECT_CALL(repository, containsService(service)).WillOnce(Return(true));
  EXPECT_TRUE(sut.containsService(service));
  EXPECT_CALL(repository, getServiceData(service)).WillOnce(Return(&data));
  EXPECT_EQ(sut.getServiceData(service), &data);
}

TEST_F(AnObservingRepository, StopsBeforeItTells) {
  const InSequence order;
  EXPECT_CALL(repository, shutdownAllServices());
  EXPECT_CALL(observer, stopped());
  sut.shutdownAllServices();
}

TEST_F(AnObservingRepository, DeletesBeforeItTells) {
  const InSequence order;
  EXPECT_CALL(repository, deleteAllServices());
  EXPECT_CALL(observer, deleted());
  sut.deleteAllServices();
}

/** One that wants to know of proxies and invokers, too. */
class CuriousObserver : public ObserverMock {
 public:
  MOCK_METHOD(void, proxyAdded, (const std::string&, const ProxyRequest*, const CommsChannelIfc*),
              (override));
  MOCK_METHOD(void, invokerAdded, (const std::string&, const std::string&), (override));
  MOCK_METHOD(void, proxiesDeleted, (), (override));
  MOCK_METHOD(void, invokersDeleted, (), (override));
};

TEST_F(AnObservingRepository, TellsOfProxiesAndInvokersWhoWantsToKnow) {
  StrictMock<CuriousObserver> curious;
  sut.addObserver(curious);
  const InSequence order;
  EXPECT_CALL(repository, addServiceProxy(proxy, dll, channel, request, Ref(first)));
  EXPECT_CALL(curious, proxyAdded("first", request, channel));
  sut.addServiceProxy(proxy, dll, channel, request, first);
  EXPECT_CALL(repository, addServiceInvoker(invoker, dll, Ref(first), Ref(second)));
  EXPECT_CALL(curious, invokerAdded("first", "second"));
  sut.addServiceInvoker(invoker, dll, first, second);
  EXPECT_CALL(repository, deleteAllServiceInvokers());
  EXPECT_CALL(curious, invokersDeleted());
  sut.deleteAllServiceInvokers();
  EXPECT_CALL(repository, deleteAllServiceProxies());
  EXPECT_CALL(curious, proxiesDeleted());
  sut.deleteAllServiceProxies();
}

TEST_F(AnObservingRepository, TellsEveryObserverInTheOrderOfAdding) {
  StrictMock<CuriousObserver> curious;
  sut.addObserver(curious);
  const InSequence order;
  EXPECT_CALL(repository, shutdownAllServices());
  EXPECT_CALL(observer, stopped());
  EXPECT_CALL(curious, stopped());
  sut.shutdownAllServices();
}

TEST_F(AnObservingRepository, HandsTheOtherDeletionsOn) {
  EXPECT_CALL(repository, deleteAllServiceInvokers());
  sut.deleteAllServiceInvokers();
  EXPECT_CALL(repository, deleteAllServiceProxies());
  sut.deleteAllServiceProxies();
  EXPECT_CALL(repository, deleteOneServiceProxy(proxy, Ref(first)));
  sut.deleteOneServiceProxy(proxy, first);
}

}  // namespace
}  // namespace zerva
