#include <gtest/gtest.h>

#include "runtime/libClientUtils/bus/AskedRequests.h"
#include "tests/platform/Bus/BusWorld.h"
#include "tests/support/WaitUntil.h"

namespace {

using namespace zerva;

/** Keeps what comes back. */
class Answers : public ReplyReceiver {
 public:
  virtual ~Answers() = default;
  void receiveReply(std::uint32_t requestId, std::uint64_t, Payload data,
                    const std::string& error) override {
    texts.push_back(std::to_string(requestId) + (data != nullptr ? *data : " " + error));
  }
  std::vector<std::string> texts;
};

TEST(AskedRequests, AreAnsweredEachByItsIdAndOnce) {
  const auto answers = std::make_shared<Answers>();
  AskedRequests sut;
  ReplyTicket one(answers, 1);
  ReplyTicket two(answers, 2);
  const auto first = sut.add(one);
  const auto second = sut.add(two);
  ASSERT_NE(first, second);
  sut.take(second).answer(std::make_shared<const std::string>("!"));
  sut.take(second).answer(std::make_shared<const std::string>("?"));
  EXPECT_EQ(answers->texts, std::vector<std::string>{"2!"});
  EXPECT_EQ(sut.count(), 1U);
  sut.take(first).fail("no");
}

TEST(AskedRequests, ThatHaveEnded_TakeNoneAnyMore) {
  const auto answers = std::make_shared<Answers>();
  AskedRequests sut;
  ReplyTicket before(answers, 1);
  ReplyTicket after(answers, 2);
  sut.add(before);
  for (ReplyTicket& ticket : sut.end()) ticket.fail("over");
  EXPECT_EQ(sut.add(after), 0U);
  EXPECT_EQ(after.requestId(), 2U);
  EXPECT_EQ(answers->texts, std::vector<std::string>{"1 over"});
  after.cancel();
}

TEST(AskedRequests, OfAProcessThatNeverAnswers_AreForgottenWhenTheirTimeIsOver) {
  const ReplyTimeoutOf shortTime(std::chrono::milliseconds(1));
  const auto answers = std::make_shared<Answers>();
  AskedRequests sut;
  std::size_t most = 0;
  EXPECT_TRUE(waitUntil([&] {
    ReplyTicket ticket(answers, 1);
    const std::size_t before = sut.count();
    sut.add(ticket);
    most = std::max(most, before);
    return sut.count() < before;
  }));
  EXPECT_GE(most, 64U);
  EXPECT_TRUE(answers->texts.empty());
  for (ReplyTicket& ticket : sut.end()) ticket.cancel();
}

}  // namespace
