#include "framework/CommsChannelDataContainerMessage.h"
#include "tests/platform/RecordingSink.h"
#include "tests/support/WaitUntil.h"
#include "tests/system/SystemWorld.h"

namespace zerva {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::SizeIs;

/** A registry that is there at once or lazily, with a thread of its own or with many. */
class TheRegistryInEachSetting : public testing::TestWithParam<const char*>, protected SystemWorld {
 protected:
  /** Sends a text to the registry. @returns why that failed, or "". */
  std::string tell(const std::string& text, long requestId) {
    CommsChannelDataContainerMessage message;
    message.setChannel("/zerva/serviceregistry");
    message.setData(text);
    message.setRequestId(requestId);
    channel.send(message);
    if (requestId == 0 || channel.receiveReply(message, requestId)) return "";
    return message.getError();
  }
};

INSTANTIATE_TEST_SUITE_P(As, TheRegistryInEachSetting,
                         testing::Values("service_instance: MT", "service_instance: ST",
                                         "service_info: MT", "service_info: ST"),
                         [](const auto& param) {
                           std::string name = param.param;
                           std::erase_if(name, [](char c) { return c == ':' || c == ' '; });
                           return name;
                         });

TEST_P(TheRegistryInEachSetting, BringsServicesTogether) {
  start(relays("service_instance: MT", 2) + relay("service_info: ST", "RelayIfc3"), GetParam());
  EXPECT_THAT(find("RelayIfc1")->pass({"RelayIfc2", "RelayIfc3"}), SizeIs(3));
}

TEST_P(TheRegistryInEachSetting, FindsAServiceByEachOfItsNames) {
  start(relay("service_instance: MT", "RelayIfc") +
            "service_instance: MT libRelay.so createRelay /test/more RelayIfcA RelayIfcB\n" +
            "proxy_info: libRelayAccess.so createRelayProxy RelayIfcB zerva_simple_rmi\n"
            "invoker_info: libRelayAccess.so createRelayInvoker RelayIfcB zerva_simple_rmi\n",
        GetParam());
  EXPECT_THAT(find("RelayIfc")->pass({"RelayIfcB"}), SizeIs(2));
}

TEST_P(TheRegistryInEachSetting, AnswersAMalformedTextWithAnErrorAndGoesOn) {
  start(relays("service_instance: MT", 2), GetParam());
  const RecordingSink log("Service Executor");
  EXPECT_THAT(tell("nonsense:x", 7000000), HasSubstr("begins with a word that is not known"));
  EXPECT_THAT(log.texts(), Contains(HasSubstr("'nonsense:x'")));
  EXPECT_EQ(tell("reg_proxy:one,two", 0), "");
  EXPECT_TRUE(waitUntil([&] { return log.texts().size() == 2; }));
  EXPECT_THAT(log.texts(), Contains(HasSubstr("has 2 fields where 4 are expected")));
  EXPECT_THAT(find("RelayIfc1")->pass({"RelayIfc2"}), SizeIs(2));
}

}  // namespace
}  // namespace zerva
