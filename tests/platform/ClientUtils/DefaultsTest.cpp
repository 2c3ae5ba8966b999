#include <gtest/gtest.h>

#include "framework/CommsChannelDataContainerMessage.h"
#include "framework/Proxy.h"
#include "framework/ProxyRequestImpl.h"
#include "framework/Service.h"

namespace {

class PlainService : public Service {
 public:
  explicit PlainService(bool& deleted) : deleted_(deleted) {}
  ~PlainService() override { deleted_ = true; }
  void init(SvcRTEContext* /*context*/) override {}

 private:
  bool& deleted_;
};

class PlainProxy : public Proxy {
 public:
  void initialise(ProxyRequest* /*request*/) override {}
};

TEST(AServiceThatOverridesNothing, DoesNothingWhenItIsToldSomething) {
  bool deleted = false;
  PlainService sut(deleted);

  sut.stop();
  sut.timerExpired(1);
  sut.run();
}

TEST(AServiceThatOverridesNothing, LeavesTheReplyToAMessageEmpty) {
  bool deleted = false;
  PlainService sut(deleted);
  CommsChannelDataContainerMessage message;
  CommsChannelDataContainerMessage reply;
  message.setData("a question");

  sut.messageReceived(message, reply);

  EXPECT_EQ(reply.getData(), "");
}

TEST(AService, IsDeletedWholeThroughEachOfItsBases) {
  bool one = false;
  bool other = false;
  Executable* const executable = new PlainService(one);
  Threadable* const threadable = new PlainService(other);

  delete executable;
  delete threadable;

  EXPECT_TRUE(one);
  EXPECT_TRUE(other);
}

TEST(AProxy, NeedsNoInit) {
  PlainProxy sut;

  sut.init(nullptr);
  sut.stop();
}

TEST(AProxyRequest, TellsChannelAndQualifierThatItWasMadeWith) {
  const ProxyRequestImpl sut(nullptr, "fooChannel", "FooIfc", "zerva_simple_rmi", nullptr, "second",
                             nullptr);

  EXPECT_EQ(sut.getSvcChannel(), "fooChannel");
  EXPECT_EQ(sut.getQualifier(), "second");
}

}  // namespace
