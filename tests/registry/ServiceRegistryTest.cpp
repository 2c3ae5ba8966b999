#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "framework/CommsChannelDataContainerMessage.h"
#include "framework/ZervaException.h"
#include "registry/ServiceRegistry.h"
#include "tests/support/ExecutorWorld.h"

namespace zerva {
namespace {

class TheRegistry : public testing::Test {
 protected:
  std::string ask(const std::string& text) {
    CommsChannelDataContainerMessage message;
    message.setData(text);
    CommsChannelDataContainerMessage reply;
    sut.messageReceived(message, reply);
    return reply.getData();
  }

  ServiceRegistry sut;
};

TEST_F(TheRegistry, KnowsTheCodeOfItsOwnProxyAndInvoker) {
  EXPECT_EQ(ask("find_proxy:ServiceRegistryIfc"),
            "found_proxy:libServiceRegistry.so,createServiceRegistryProxy");
  EXPECT_EQ(ask("find_invoker:ServiceRegistryIfc,zerva_simple_rmi"),
            "found_invoker:libServiceRegistry.so,createServiceRegistryInvoker");
  EXPECT_EQ(ask("find_invoker:ServiceRegistryIfc,zerva_svc_xml"),
            "found_invoker:libServiceRegistry.so,createServiceRegistryInvoker");
}

TEST_F(TheRegistry, AnswersWhatItDoesNotKnowWithAnotherWord) {
  EXPECT_EQ(ask("find:AIfc,/host"), "unknown:");
  EXPECT_EQ(ask("find_proxy:AIfc"), "unknown:");
  EXPECT_EQ(ask("find_invoker:AIfc,zerva_simple_rmi"), "unknown:");
}

TEST_F(TheRegistry, DoesNotGiveOutAChannelThatNobodyServes) {
  sut.registerInterface("AIfc", "/nobody/serves/this");
  EXPECT_EQ(ask("find:AIfc,/host"), "unknown:");
}

TEST_F(TheRegistry, AnnouncesEachNameOfAListAndTakesThemBack) {
  ScriptedService service;
  ExecutorWorld world;
  world.run(&service, "/served", Mode::MT);
  sut.registerInterface("AIfc BIfc  CIfc", "/served");
  for (const char* const ifc : {"AIfc", "BIfc", "CIfc"}) {
    EXPECT_EQ(ask(std::string("find:") + ifc + ",/host"), "found:/served");
  }
  sut.unregisterInterface("AIfc CIfc", "/served");
  EXPECT_EQ(ask("find:AIfc,/host"), "unknown:");
  EXPECT_EQ(ask("find:BIfc,/host"), "found:/served");
  EXPECT_EQ(ask("find:CIfc,/host"), "unknown:");
  EXPECT_EQ(ask("find:AIfc BIfc  CIfc,/host"), "unknown:") << "the list is no name";
}

TEST_F(TheRegistry, ForgetsWhatWasServedByAnExecutorThatIsGone) {
  ScriptedService service;
  ExecutorWorld world;
  ServiceExecutor& first = world.run(&service, "/served", Mode::MT);
  sut.registerInterface("AIfc", "/served");
  world.remove(first);
  world.run(&service, "/served", Mode::MT);
  EXPECT_EQ(ask("find:AIfc,/host"), "unknown:") << "it is served by another one";
  sut.registerInterface("AIfc", "/served");
  EXPECT_EQ(ask("find:AIfc,/host"), "found:/served");
}

TEST_F(TheRegistry, TakesRecordsAsTextAndAsCallsToTheSamePlace) {
  EXPECT_EQ(ask("reg_proxy:libA.so,createA,AIfc,zerva_simple_rmi"), "");
  EXPECT_EQ(ask("find_proxy:AIfc"), "found_proxy:libA.so,createA");
  sut.registerProxy("libB.so", "createB", "AIfc", "zerva_simple_rmi");
  EXPECT_EQ(ask("find_proxy:AIfc"), "found_proxy:libB.so,createB");

  EXPECT_EQ(ask("reg_invoker:libA.so,createA,AIfc,p"), "");
  EXPECT_EQ(ask("find_invoker:AIfc,p"), "found_invoker:libA.so,createA");
  sut.registerInvoker("libB.so", "createB", "AIfc", "p");
  EXPECT_EQ(ask("find_invoker:AIfc,p"), "found_invoker:libB.so,createB");
}

TEST_F(TheRegistry, KeepsTheProtocolsOfInvokersApart) {
  sut.registerInvoker("libA.so", "createA", "AIfc", "p");
  EXPECT_EQ(ask("find_invoker:AIfc,q"), "unknown:");
}

TEST_F(TheRegistry, RefusesATextThatIsMalformedAndChangesNothing) {
  sut.registerProxy("libA.so", "createA", "AIfc", "p");
  EXPECT_THROW(ask("reg_proxy:libB.so,createB,AIfc"), ZervaException);
  EXPECT_THROW(ask("reg_proxy:libB.so,createB,AIfc,p,more"), ZervaException);
  EXPECT_THROW(ask("reg_proxy"), ZervaException);
  EXPECT_EQ(ask("find_proxy:AIfc"), "found_proxy:libA.so,createA");
}

TEST_F(TheRegistry, RefusesACommaThatWouldBeReadAsTheEndOfAField) {
  EXPECT_THROW(sut.registerProxy("lib,A.so", "createA", "AIfc", "p"), ZervaException);
  EXPECT_THROW(sut.registerInvoker("libA.so", "create,A", "AIfc", "p"), ZervaException);
  EXPECT_THROW(sut.registerInterface("AIfc", "/a,b"), ZervaException);
  EXPECT_EQ(ask("find_proxy:AIfc"), "unknown:");
  EXPECT_EQ(ask("find_invoker:AIfc,p"), "unknown:");
}

}  // namespace
}  // namespace zerva
