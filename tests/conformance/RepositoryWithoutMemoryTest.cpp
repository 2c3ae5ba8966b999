#include <gtest/gtest.h>

#include <array>
#include <string>

#include "ServiceRepository.h"
#include "framework/Service.h"
#include "tests/support/NoMemory.h"

namespace zerva {
namespace {

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
