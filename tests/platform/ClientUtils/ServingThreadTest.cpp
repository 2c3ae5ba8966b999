#include <gtest/gtest.h>

#include "runtime/libClientUtils/ServingThread.h"
#include "runtime/libClientUtils/trace/Trace.h"

namespace zerva {
namespace {

class Served final : public Serving {
 public:
  virtual ~Served() = default;
  void waitBegins(const std::shared_ptr<Parker>& /*parker*/) override {}
  void waitEnds(const std::shared_ptr<Parker>& /*parker*/) override {}
  bool isShutDown() override { return false; }
  bool serveNext(const CallChain& /*chain*/) override { return false; }
  std::string_view channelName() const override { return "/served"; }
};

// What it does there would count as its service's, and a wait as one of the service's.
TEST(AThreadThatServes, ServesNothingWhileItDoesSomethingForOthers) {
  Served served;
  const CallChain chain = CallChain::begin();
  const ServingScope serving(&served, chain);
  {
    const ForOthersScope sut;
    EXPECT_EQ(servingThread().serving, nullptr);
    EXPECT_FALSE(servingThread().chain());
    EXPECT_EQ(servingThread().nesting, 0U);
    EXPECT_EQ(Trace::servedByThisThread(), "");
  }
  EXPECT_EQ(servingThread().serving, &served);
  EXPECT_TRUE(servingThread().chain().sameAs(chain));
  EXPECT_EQ(Trace::servedByThisThread(), "/served");
}

}  // namespace
}  // namespace zerva
