// What the repository does when an allocation fails: whoever adds something is told, and nobody
// else waits for ever; whoever takes it down is not left half way.

#include <gtest/gtest.h>

#include <array>
#include <new>
#include <string>

#include "ServiceRepository.h"
#include "framework/Service.h"
#include "tests/support/NoMemory.h"

namespace zerva {
namespace {

/** A repository whose semaphores a test can see. */
class OpenRepository : public ServiceRepository {
 public:
  using ServiceRepository::invokerMapSem;
  using ServiceRepository::proxyMapSem;
  using ServiceRepository::svcMapSem;
};

bool isFree(Semaphore& semaphore) { return semaphore.take(0) && semaphore.give(); }

/** Names that do not fit into a string object itself. */
const char* const kInterfaces = "AnInterfaceOfALongName AnotherInterfaceOfALongName";

struct Addition {
  const char* name;
  void (*add)(OpenRepository& repository);
};

class AnAdditionWithoutMemory : public testing::TestWithParam<Addition> {};

TEST_P(AnAdditionWithoutMemory, ThrowsAndLeavesTheSemaphoresFree) {
  int failures = 0;
  for (int nth = 1;; ++nth) {
    OpenRepository sut;
    bool thrown = false;
    letAllocationFail(nth);
    try {
      GetParam().add(sut);
    } catch (const std::bad_alloc&) {
      thrown = true;
    }
    const bool over = allocationIsToFail();
    letAllocationFail(0);
    EXPECT_EQ(thrown, !over) << "allocation " << nth;
    EXPECT_TRUE(isFree(sut.svcMapSem)) << "allocation " << nth;
    EXPECT_TRUE(isFree(sut.proxyMapSem)) << "allocation " << nth;
    EXPECT_TRUE(isFree(sut.invokerMapSem)) << "allocation " << nth;
    if (over) break;
    ++failures;
  }
  // The text and the entry at least.
  EXPECT_GT(failures, 1);
}

INSTANTIATE_TEST_SUITE_P(
    OfEachKind, AnAdditionWithoutMemory,
    testing::Values(Addition{"Service",
                             [](OpenRepository& repository) {
                               repository.addService(nullptr, nullptr, nullptr, nullptr,
                                                     kInterfaces);
                             }},
                    Addition{"LegacyService",
                             [](OpenRepository& repository) {
                               repository.addService(nullptr, nullptr, kInterfaces);
                             }},
                    Addition{"Proxy",
                             [](OpenRepository& repository) {
                               std::string ifc = kInterfaces;
                               repository.addServiceProxy(nullptr, nullptr, nullptr, nullptr, ifc);
                             }},
                    Addition{"Invoker",
                             [](OpenRepository& repository) {
                               std::string ifc = kInterfaces;
                               std::string protocol = "a_protocol_of_a_long_name";
                               repository.addServiceInvoker(nullptr, nullptr, ifc, protocol);
                             }}),
    [](const auto& parameter) { return parameter.param.name; });

class CountedService final : public Service {
 public:
  explicit CountedService(int& deleted) : deleted_(deleted) {}
  ~CountedService() override { ++deleted_; }
  void init(SvcRTEContext* /*context*/) override {}
  void run() override {}

 private:
  int& deleted_;
};

// Whoever takes a process down must not end half way, with objects that are deleted and recorded.
TEST(ARepositoryWithoutMemory, DeletesEachServiceOnce) {
  int failures = 0;
  for (int nth = 1;; ++nth) {
    std::array<int, 3> deleted{};
    ServiceRepository sut;
    sut.addService(new CountedService(deleted[0]), nullptr, "B D F");
    sut.addService(new CountedService(deleted[1]), nullptr, "A E");
    sut.addService(new CountedService(deleted[2]), nullptr, "C");

    letAllocationFail(nth);
    EXPECT_NO_THROW(sut.deleteAllServices());
    const bool untouched = allocationIsToFail();
    letAllocationFail(0);

    EXPECT_EQ(deleted, (std::array<int, 3>{1, 1, 1})) << "allocation " << nth;
    std::string name = "B";
    EXPECT_EQ(sut.findService(name, ""), nullptr);
    if (untouched) break;
    ++failures;
  }
  EXPECT_GT(failures, 1);
}

}  // namespace
}  // namespace zerva
