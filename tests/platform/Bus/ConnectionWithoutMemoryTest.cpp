#include <gtest/gtest.h>

#include <chrono>
#include <exception>
#include <string>
#include <thread>

#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/bus/Outgoing.h"
#include "tests/platform/Bus/ConnectionWorld.h"
#include "tests/support/NoMemory.h"

namespace {

using namespace zerva;

/** One that says more than fits without memory, of which there is none when it is asked. */
class WordyError final : public std::exception {
 public:
  const char* what() const noexcept override {
    letAllocationFail(1);
    return "it sent something that is much too wrong";
  }
};

class AConnection : public ConnectionWorld {
 protected:
  std::string ended = "not yet";
};

// It stayed as it was, half made: nothing that came was read, and whoever waited for an answer from
// the other process waited for the reply time-out, again and again.
TEST_F(AConnection, ThatThereIsNoMemoryToRead_IsEndedAndItsOwnerToldWhy) {
  sut->setHandler(
      {[](std::string_view, const Payload&) {}, [&](const std::string& why) { ended = why; }, {}},
      kMaximumFrame);
  sut->start();
  say("x");

  letAllocationFail(1);
  const auto error = exceptionOf([&] { context->poll(); });

  EXPECT_FALSE(allocationIsToFail());
  EXPECT_EQ(error, std::nullopt);
  EXPECT_EQ(ended, "std::bad_alloc");
  EXPECT_TRUE(sut->hungUp());
}

// The turn to read was never given back, and whoever waited for its end waited for ever.
TEST_F(AConnection, ThatThereIsNoMemoryToSayWhatIsWrongOf_IsEndedAllTheSame) {
  sut->setHandler({[](std::string_view, const Payload&) { throw WordyError(); },
                   [&](const std::string& why) { ended = why; },
                   {}},
                  kMaximumFrame);
  sut->start();
  sut->share();
  say(std::string("\0\0\0\1x", 5));
  ASSERT_TRUE(sut->beginReading());

  EXPECT_EQ(sut->read(), Input::Read::Ended);

  EXPECT_FALSE(allocationIsToFail());
  sut->endReading();
  context->poll();
  EXPECT_EQ(ended, "std::bad_alloc");
  sut->waitForReader();
}

TEST_F(AConnection, ThatThereIsNoMemoryForALongFrameOf_IsEndedWhereverItLacks) {
  const std::string text(65'536, 'x');
  const std::string whole = encodeHead(ReplyFrame{1, text}) + text;
  bool lacked = true;
  for (int nth = 1; lacked; ++nth) {
    connect();
    ended = "not yet";
    int taken = 0;
    sut->setHandler({[&](std::string_view, const Payload& data) { taken += *data == text ? 1 : 0; },
                     [&](const std::string& why) { ended = why; },
                     {}},
                    kMaximumFrame);
    sut->start();
    say(whole);

    letAllocationFail(nth);
    const auto error = exceptionOf([&] { runBusThread(); });
    lacked = !allocationIsToFail();
    letAllocationFail(0);

    EXPECT_EQ(error, std::nullopt);
    EXPECT_EQ(ended, lacked ? "std::bad_alloc" : "not yet") << nth;
    EXPECT_EQ(taken, lacked ? 0 : 1) << nth;
    EXPECT_LT(nth, 20);
  }
}

// Half of it is in the socket, and others' messages stand behind it.
TEST_F(AConnection, ThatThereIsNoMemoryToKeepALentMessageFor_GetsAllOfItBeforeTheCallIsOver) {
  constexpr std::size_t kMuch = 2'000'000;
  int withoutMemory = 0;
  for (int nth = 1;; ++nth) {
    connect();
    Outgoing outgoing;
    sut->setHandler({[](std::string_view, const Payload&) {}, [](const std::string&) {}, [] {}},
                    kMaximumFrame);
    sut->start();
    outgoing.open(sut);
    std::string all;
    std::thread reader([&] {
      std::string part(100'000, '\0');
      for (;;) {
        const ssize_t came = ::recv(other.get(), part.data(), part.size(), 0);
        if (came == 0) break;
        if (came > 0) all.append(part, 0, static_cast<std::size_t>(came));
        if (came < 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        if (all.size() == kMuch + 1) break;
      }
    });
    std::string lent(kMuch, 'a');

    letAllocationFail(nth);
    const auto result = outgoing.send("<", borrowed(lent), kMaximumQueued);
    const bool lacked = !allocationIsToFail();
    letAllocationFail(0);
    lent.assign(kMuch, 'b');

    if (!lacked) {
      outgoing.waitUntilSent(Clock::now());
      outgoing.end();
      ::shutdown(other.get(), SHUT_RDWR);
      reader.join();
      EXPECT_EQ(result, Outgoing::Result::Taken);
      break;
    }
    if (result == Outgoing::Result::Taken) {
      ++withoutMemory;
      reader.join();
      EXPECT_TRUE(all == "<" + std::string(kMuch, 'a'));
    } else {
      // There was no memory for a place in the queue.
      EXPECT_EQ(result, Outgoing::Result::Ended);
      reader.join();
      EXPECT_LT(all.size(), kMuch);
    }
    ASSERT_LT(nth, 20);
  }
  EXPECT_GE(withoutMemory, 1);
}

// Whoever sent before is not to lose anything by it, and the sender is not to wait.
TEST_F(AConnection, ThatThereIsNoMemoryToKeepALentMessageBehindOthersFor_ThrowsAndKeepsTheOthers) {
  bool lacked = true;
  for (int nth = 1; lacked; ++nth) {
    connect();
    Outgoing outgoing;
    sut->setHandler({[](std::string_view, const Payload&) {}, [](const std::string&) {}, [] {}},
                    kMaximumFrame);
    sut->start();
    const std::string lent(1000, 'a');
    EXPECT_EQ(outgoing.send("1", nullptr, kMaximumQueued), Outgoing::Result::Taken);

    letAllocationFail(nth);
    const auto error = exceptionOf([&] { outgoing.send("<", borrowed(lent), kMaximumQueued); });
    lacked = !allocationIsToFail();
    letAllocationFail(0);

    EXPECT_EQ(error.has_value(), lacked);
    EXPECT_EQ(outgoing.send("2", nullptr, kMaximumQueued), Outgoing::Result::Taken);
    outgoing.open(sut);
    std::string all(5000, '\0');
    const ssize_t came = ::recv(other.get(), all.data(), all.size(), 0);
    ASSERT_GT(came, 0);
    all.resize(static_cast<std::size_t>(came));
    EXPECT_EQ(all, lacked ? "12" : "1<" + lent + "2");
    ASSERT_LT(nth, 20);
  }
}

}  // namespace
