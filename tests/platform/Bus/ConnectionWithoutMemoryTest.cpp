#include <gtest/gtest.h>
#include <sys/socket.h>

#include <memory>
#include <string>

#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/bus/Connection.h"
#include "runtime/libClientUtils/bus/Frames.h"
#include "tests/support/NoMemory.h"

namespace {

using namespace zerva;

// It stayed as it was, half made: nothing that came was read, and whoever waited for an answer from
// the other process waited for the reply time-out, again and again.
TEST(AConnection, ThatThereIsNoMemoryToRead_IsEndedAndItsOwnerToldWhy) {
  const auto context = std::make_shared<asio::io_context>(1);
  const auto watch = std::make_shared<SocketWatch>(context);
  watch->start();
  int sockets[2] = {};
  ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, sockets), 0);
  const FileDescriptor other(sockets[1]);
  const auto sut =
      std::make_shared<Connection>(watch, FileDescriptor(sockets[0]), kMaximumGreeting);
  std::string ended = "not yet";
  sut->setHandler({[](std::string_view) {}, [&](const std::string& why) { ended = why; }, {}},
                  kMaximumFrame);
  sut->start();
  ASSERT_EQ(::send(other.get(), "x", 1, 0), 1);

  letAllocationFail(1);
  const auto error = exceptionOf([&] { context->poll(); });

  EXPECT_FALSE(allocationIsToFail());
  EXPECT_EQ(error, std::nullopt);
  EXPECT_EQ(ended, "std::bad_alloc");
  EXPECT_TRUE(sut->hungUp());
}

}  // namespace
