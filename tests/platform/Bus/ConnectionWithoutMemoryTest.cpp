#include <gtest/gtest.h>

#include <exception>
#include <string>

#include "runtime/libClientUtils/ExceptionText.h"
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

}  // namespace
