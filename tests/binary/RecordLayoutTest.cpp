#include <gmock/gmock.h>

#include <cstddef>
#include <map>
#include <type_traits>

#include "ServiceRepository.h"
#include "SvcData.h"
#include "SvcInvokerData.h"
#include "SvcProxyData.h"

namespace {

constexpr std::size_t kPointer = sizeof(void*);

TEST(TheRecordOfAService, HasItsFieldsInTheirOrder) {
  EXPECT_EQ(offsetof(SvcData, service), 0 * kPointer);
  EXPECT_EQ(offsetof(SvcData, executor), 1 * kPointer);
  EXPECT_EQ(offsetof(SvcData, channel), 2 * kPointer);
  EXPECT_EQ(offsetof(SvcData, dll), 3 * kPointer);
  EXPECT_EQ(sizeof(SvcData), 4 * kPointer);
}

TEST(TheRecordOfAProxy, HasItsRequestBeforeItsChannel) {
  EXPECT_EQ(offsetof(SvcProxyData, proxy), 0 * kPointer);
  EXPECT_EQ(offsetof(SvcProxyData, dll), 1 * kPointer);
  EXPECT_EQ(offsetof(SvcProxyData, request), 2 * kPointer);
  EXPECT_EQ(offsetof(SvcProxyData, channel), 3 * kPointer);
  EXPECT_EQ(sizeof(SvcProxyData), 4 * kPointer);
}

TEST(TheRecordOfAnInvoker, HasItsFieldsInTheirOrder) {
  EXPECT_EQ(offsetof(SvcInvokerData, invoker), 0 * kPointer);
  EXPECT_EQ(offsetof(SvcInvokerData, dll), 1 * kPointer);
  EXPECT_EQ(sizeof(SvcInvokerData), 2 * kPointer);
}

TEST(TheRecords, HoldPointersOfTheirTypes) {
  EXPECT_TRUE((std::is_same_v<decltype(SvcData::service), Service*>));
  EXPECT_TRUE((std::is_same_v<decltype(SvcData::executor), ServiceExecutor*>));
  EXPECT_TRUE((std::is_same_v<decltype(SvcData::channel), CommsChannelIfc*>));
  EXPECT_TRUE((std::is_same_v<decltype(SvcData::dll), Dll*>));
  EXPECT_TRUE((std::is_same_v<decltype(SvcProxyData::proxy), Proxy*>));
  EXPECT_TRUE((std::is_same_v<decltype(SvcProxyData::dll), Dll*>));
  EXPECT_TRUE((std::is_same_v<decltype(SvcProxyData::request), ProxyRequest*>));
  EXPECT_TRUE((std::is_same_v<decltype(SvcProxyData::channel), CommsChannelIfc*>));
  EXPECT_TRUE((std::is_same_v<decltype(SvcInvokerData::invoker), Invoker*>));
  EXPECT_TRUE((std::is_same_v<decltype(SvcInvokerData::dll), Dll*>));
}

class OpenRepository : public ServiceRepository {
 public:
  using ServiceRepository::invokerMap;
  using ServiceRepository::invokerMapSem;
  using ServiceRepository::proxyMap;
  using ServiceRepository::proxyMapSem;
  using ServiceRepository::svcMap;
  using ServiceRepository::svcMapSem;
};

TEST(TheRepositorysFields, FollowEachOtherWithoutGapsInTheirOrder) {
  OpenRepository sut;
  const auto place = [&](const void* field) {
    return static_cast<std::size_t>(static_cast<const char*>(field) -
                                    reinterpret_cast<const char*>(&sut));
  };

  EXPECT_EQ(place(&sut.svcMap), kPointer);
  EXPECT_EQ(place(&sut.proxyMap), place(&sut.svcMap) + sizeof(decltype(sut.svcMap)));
  EXPECT_EQ(place(&sut.invokerMap), place(&sut.proxyMap) + sizeof(decltype(sut.proxyMap)));
  // A semaphore begins where one may stand.
  const std::size_t mapsEnd = place(&sut.invokerMap) + sizeof(decltype(sut.invokerMap));
  EXPECT_EQ(place(&sut.svcMapSem),
            (mapsEnd + alignof(Semaphore) - 1) / alignof(Semaphore) * alignof(Semaphore));
  EXPECT_EQ(place(&sut.proxyMapSem), place(&sut.svcMapSem) + sizeof sut.svcMapSem);
  EXPECT_EQ(place(&sut.invokerMapSem), place(&sut.proxyMapSem) + sizeof sut.proxyMapSem);
  EXPECT_EQ(sizeof(ServiceRepository), place(&sut.invokerMapSem) + sizeof sut.invokerMapSem);
}

TEST(TheRepositorysFields, AreMultimapsByNameAndEmbeddedSemaphores) {
  EXPECT_TRUE(
      (std::is_same_v<decltype(OpenRepository::svcMap), std::multimap<std::string, SvcData>>));
  EXPECT_TRUE((std::is_same_v<decltype(OpenRepository::proxyMap),
                              std::multimap<std::string, SvcProxyData>>));
  EXPECT_TRUE((std::is_same_v<decltype(OpenRepository::invokerMap),
                              std::multimap<std::string, SvcInvokerData>>));
  EXPECT_TRUE((std::is_same_v<decltype(OpenRepository::svcMapSem), Semaphore>));
  EXPECT_TRUE((std::is_same_v<decltype(OpenRepository::proxyMapSem), Semaphore>));
  EXPECT_TRUE((std::is_same_v<decltype(OpenRepository::invokerMapSem), Semaphore>));
}

}  // namespace
