#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "framework/Dll.h"
#include "tests/platform/Libraries.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/WaitUntil.h"

namespace {

using testing::HasSubstr;
using zerva::waitUntil;

/** An exception whose type is known only to a library, which is closed after it was thrown. */
class AnExceptionOfAClosedLibrary : public testing::TestWithParam<Mode> {
 protected:
  AnExceptionOfAClosedLibrary() {
    library.emplace(zerva::libraryDirectory() / "libplatform_plugin.so");
    auto* const create = reinterpret_cast<Service* (*)()>(library->symbol("createPluginService"));
    plugin.reset(create());
  }

  void closeLibrary() {
    plugin.reset();
    library.reset();
  }

  std::optional<Dll> library;
  std::unique_ptr<Service> plugin;  // its run throws
  std::atomic<bool> called{false};
  ScriptedService service{[this](const std::string& request) {
    called = true;
    plugin->run();
    return request;
  }};
  ExecutorWorld world;
};

TEST_P(AnExceptionOfAClosedLibrary, ThatAServiceThrew_IsStillToldToWhoeverAsked) {
  ServiceExecutor& executor = world.run(&service, "/svc", GetParam());
  CommsChannel caller("/test/caller", nullptr);
  CommsChannelDataContainerMessage message;
  message.setChannel("/svc");
  message.setRequestId(1);
  ASSERT_TRUE(caller.send(message));
  ASSERT_TRUE(waitUntil([&] { return called.load(); }));
  world.remove(executor);  // waits for the request
  closeLibrary();

  EXPECT_FALSE(caller.receiveReply(message, 1));
  EXPECT_EQ(message.getError(), "the plugin failed");
}

TEST_P(AnExceptionOfAClosedLibrary, ThatEndedTheMakingOfAService_IsToldToAllWhoAskLater) {
  world.context.make = [&]() -> Service* {
    plugin->run();
    return nullptr;
  };
  world.runLazy("/lazy", GetParam());
  EXPECT_THAT(ask("/lazy", "x").error, HasSubstr("the plugin failed"));
  closeLibrary();

  EXPECT_THAT(ask("/lazy", "x").error, HasSubstr("the plugin failed"));
  EXPECT_THAT(ask("/lazy", "x").error, HasSubstr("the plugin failed"));
  world.end();
}

INSTANTIATE_TEST_SUITE_P(Modes, AnExceptionOfAClosedLibrary, testing::Values(Mode::ST, Mode::MT),
                         [](const auto& mode) { return mode.param == Mode::ST ? "ST" : "MT"; });

}  // namespace
