#include <gtest/gtest.h>

#include <new>
#include <string>

#include "framework/CommsChannelDataContainerMessage.h"
#include "registry/ServiceRegistry.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/NoMemory.h"

namespace zerva {
namespace {

std::string answerOf(ServiceRegistry& registry, const std::string& text) {
  CommsChannelDataContainerMessage message;
  message.setData(text);
  CommsChannelDataContainerMessage reply;
  registry.messageReceived(message, reply);
  return reply.getData();
}

// The names came from a stream that ended where one had no memory, and the caller took it that all
// were announced.
TEST(TheRegistryWithoutMemory, AnnouncesEachNameOrSaysThatItDidNot) {
  ScriptedService service;
  ExecutorWorld world;
  world.run(&service, "/served", Mode::MT);
  int failures = 0;
  for (int nth = 1;; ++nth) {
    ServiceRegistry sut;
    bool thrown = false;
    letAllocationFail(nth);
    try {
      sut.registerInterface("AnInterfaceOfALongName AnotherInterfaceOfAVeryLongName", "/served");
    } catch (const std::bad_alloc&) {
      thrown = true;
    }
    const bool over = allocationIsToFail();
    letAllocationFail(0);
    failures += thrown ? 1 : 0;
    if (!thrown) {
      EXPECT_EQ(answerOf(sut, "find:AnInterfaceOfALongName,/host"), "found:/served") << nth;
      EXPECT_EQ(answerOf(sut, "find:AnotherInterfaceOfAVeryLongName,/host"), "found:/served")
          << nth;
    }
    if (over) break;
  }
  EXPECT_GT(failures, 1);
}

}  // namespace
}  // namespace zerva
