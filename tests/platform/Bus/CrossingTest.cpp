#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "tests/platform/Bus/StrangerWorld.h"

namespace {

using namespace zerva;
using testing::HasSubstr;

/** A process that this one connects to, and that connects to this one at the same moment. */
class ACrossing : public AStranger {
 protected:
  ~ACrossing() override {
    ::close(listening_);
    if (asking_.joinable()) asking_.join();
  }

  /** This process asks the other one something. @returns the connection that it makes. */
  std::unique_ptr<Stranger> connectionTo(const std::string& name) {
    listening_ = listenAs(name, "/there");
    asking_ = std::thread([&] {
      answer_ = ask("/there", "question");
      answered_ = true;
    });
    auto made = std::make_unique<Stranger>(::accept(listening_, nullptr, nullptr));
    EXPECT_TRUE(std::holds_alternative<HelloFrame>(decodeFrame(made->hear())));
    return made;
  }

  /** Another connection, since the question was not yet asked on the one before; or none. */
  std::unique_ptr<Stranger> nextConnection() {
    pollfd ready{listening_, POLLIN, 0};
    while (!answered_) {
      if (::poll(&ready, 1, 1) == 1) {
        return std::make_unique<Stranger>(::accept(listening_, nullptr, nullptr));
      }
    }
    return nullptr;
  }

  /** The connection that the other one makes. */
  std::unique_ptr<Stranger> connectionFrom(const std::string& name) const {
    auto made = std::make_unique<Stranger>(ownSocket());
    made->say(encodeHead(HelloFrame{kWireVersion, name}));
    return made;
  }

  /** Answers the question on a connection. @returns what the one who asked got. */
  std::string answerOn(Stranger& connection) {
    const std::string heard = connection.hear();
    const Frame frame = decodeFrame(heard);
    if (const auto* const asked = std::get_if<RequestFrame>(&frame)) {
      connection.say(encodeHead(ReplyFrame{asked->wireId, "answer"}) + "answer");
    } else {
      ADD_FAILURE() << "there is no question";
      return "";
    }
    asking_.join();
    return answer_.data;
  }

  /** Waits for the one who asked. @returns the error that it was told. */
  std::string error() {
    asking_.join();
    return answer_.error;
  }

  const std::string smallest = std::to_string(::getpid()) + "-0000000000000000";
  const std::string greatest = std::to_string(::getpid()) + "-ffffffffffffffff";

 private:
  const ReplyTimeoutOf longTime_{std::chrono::hours(1)};
  int listening_ = -1;
  Answer answer_{};
  std::atomic<bool> answered_{false};
  std::thread asking_;
};

TEST_F(ACrossing, OfAProcessWithASmallerId_IsTakenInPlaceOfTheOwnConnection) {
  const auto own = connectionTo(smallest);
  const auto theirs = connectionFrom(smallest);
  EXPECT_TRUE(std::holds_alternative<WelcomeFrame>(decodeFrame(theirs->hear())));
  EXPECT_TRUE(own->isDismissed());
  EXPECT_EQ(answerOn(*theirs), "answer");
}

TEST_F(ACrossing, OfAProcessWithAGreaterId_IsDismissedForTheOwnConnection) {
  const auto own = connectionTo(greatest);
  const auto theirs = connectionFrom(greatest);
  EXPECT_TRUE(std::holds_alternative<CrossedFrame>(decodeFrame(theirs->hear())));
  EXPECT_TRUE(theirs->isDismissed());
  own->say(encodeHead(WelcomeFrame{kWireVersion, greatest}));
  EXPECT_EQ(answerOn(*own), "answer");
}

TEST_F(ACrossing, ThatTheOtherSideTells_IsWaitedFor) {
  const auto own = connectionTo(smallest);
  own->say(encodeHead(CrossedFrame{}));
  EXPECT_TRUE(own->isDismissed());
  const auto theirs = connectionFrom(smallest);
  EXPECT_TRUE(std::holds_alternative<WelcomeFrame>(decodeFrame(theirs->hear())));
  EXPECT_EQ(answerOn(*theirs), "answer");
}

TEST_F(ACrossing, ThatTheOtherSideTellsWithoutConnecting_FailsWhatWaits) {
  const auto own = connectionTo(smallest);
  own->say(encodeHead(CrossedFrame{}));
  EXPECT_THAT(error(), HasSubstr("was ended: it did not connect"));
}

TEST_F(ACrossing, WithSomebodyElse_FailsWhatWaits) {
  auto own = connectionTo(smallest);
  while (own != nullptr) {
    own->say(encodeHead(WelcomeFrame{kWireVersion, greatest}));
    EXPECT_TRUE(own->isDismissed());
    own = nextConnection();
  }
  EXPECT_THAT(error(), HasSubstr("was ended: it is somebody else"));
}

TEST_F(AStranger, WhoseMessageWantsNoAnswer_IsHeard) {
  std::string said;
  std::atomic<bool> heard{false};
  serve("/note", Mode::MT, [&](const std::string& text) {
    said = text;
    heard = true;
    return std::string();
  });
  Stranger stranger(socketPath());
  stranger.say(hello());
  stranger.hear();
  stranger.say(encodeHead(MessageFrame{1, {2}, "/stranger", "/note", "remember"}) + "remember");
  ASSERT_TRUE(waitUntil([&] { return heard.load(); }));
  EXPECT_EQ(said, "remember");
}

}  // namespace
