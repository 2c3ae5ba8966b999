#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "framework/CommsChannelDataContainerMessage.h"
#include "host/trace/TraceReader.h"
#include "host/tracing/TracedChannel.h"
#include "runtime/libClientUtils/trace/Trace.h"
#include "tests/support/TempDirectory.h"

namespace zerva {
namespace {

using testing::Ref;
using testing::Return;
using testing::ReturnRefOfCopy;
using testing::StrictMock;

class ChannelMock : public CommsChannelIfc {
 public:
  MOCK_METHOD(const std::string&, getName, (), (const, override));
  MOCK_METHOD(bool, send, (CommsChannelDataContainerMessage&), (override));
  MOCK_METHOD(bool, sendTo, (const std::string&, const std::string&), (override));
  MOCK_METHOD(bool, receiveReply, (CommsChannelDataContainerMessage&, long), (override));
  MOCK_METHOD(bool, isServed, (const std::string&), (override));
};

class ATracedChannel : public testing::Test {
 protected:
  ~ATracedChannel() override { Trace::stop(); }

  /** Asks, and is answered when there is an answer. @returns the line that the trace then has. */
  TraceLine traceOfQuestion(const char* answer) {
    EXPECT_CALL(channel, receiveReply(Ref(message), 7))
        .WillOnce([&](CommsChannelDataContainerMessage& received, long) {
          if (answer != nullptr) received.setData(answer);
          return answer != nullptr;
        });
    EXPECT_EQ(Trace::start(path, ""), "");
    message.setData("find:A,/h");
    EXPECT_EQ(sut.receiveReply(message, 7), answer != nullptr);
    Trace::stop();
    return readTraceFile(path).back();
  }

  const TempDirectory directory;
  const std::string path = directory.file("t.jsonl").string();
  CommsChannelDataContainerMessage message;
  StrictMock<ChannelMock> channel;
  TracedChannel sut{channel};
};

TEST_F(ATracedChannel, HandsEverythingOn) {
  EXPECT_CALL(channel, getName()).WillOnce(ReturnRefOfCopy(std::string("/h")));
  EXPECT_EQ(sut.getName(), "/h");
  EXPECT_CALL(channel, send(Ref(message))).WillOnce(Return(true));
  EXPECT_TRUE(sut.send(message));
  EXPECT_CALL(channel, sendTo("/a", "data")).WillOnce(Return(true));
  EXPECT_TRUE(sut.sendTo("/a", "data"));
  EXPECT_CALL(channel, isServed("/a")).WillOnce(Return(true));
  EXPECT_TRUE(sut.isServed("/a"));
  EXPECT_CALL(channel, receiveReply(Ref(message), 7)).WillOnce(Return(true));
  EXPECT_TRUE(sut.receiveReply(message, 7));
}

TEST_F(ATracedChannel, TracesAQuestionWithItsAnswer) {
  const TraceLine line = traceOfQuestion("found:/a");
  EXPECT_EQ(line.event, "question");
  EXPECT_EQ(line.text("text"), "find:A,/h");
  EXPECT_EQ(line.text("answer"), "found:/a");
  EXPECT_GT(line.number("duration"), 0);
}

TEST_F(ATracedChannel, TracesAQuestionThatIsNotAnsweredWithoutAnAnswer) {
  const TraceLine line = traceOfQuestion(nullptr);
  EXPECT_EQ(line.text("text"), "find:A,/h");
  EXPECT_EQ(line.text("answer"), "");
}

}  // namespace
}  // namespace zerva
