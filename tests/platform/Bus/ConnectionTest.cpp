#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/socket.h>
#include <sys/uio.h>

#include <array>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/platform/Bus/ConnectionWorld.h"
#include "tests/support/WaitUntil.h"

namespace {

using namespace zerva;

class AConnection : public ConnectionWorld {
 protected:
  AConnection() {
    sut->setHandler(
        {[this](std::string_view body, const Payload& data) { take(body, data); },
         [this](const std::string& why) { ended.push_back(why); }, [this] { ++timesWritable; }},
        kMaximumFrame);
    sut->start();
    sut->share();
  }

  void take(std::string_view body, const Payload& data) {
    if (whenTaken) whenTaken();
    taken.push_back(std::string(body) + (data != nullptr ? *data : std::string()));
  }

  static std::string longFrame(std::size_t size) {
    const std::string text(size, 'x');
    return encodeHead(ReplyFrame{1, text}) + text;
  }

  static std::string frame(const std::string& body) {
    return std::string(3, '\0') + static_cast<char>(body.size()) + body;
  }

  /** Whether the other side sees the end. */
  bool isClosed() const {
    char byte = 0;
    return ::recv(other.get(), &byte, 1, MSG_DONTWAIT) == 0;
  }

  std::function<void()> whenTaken;
  std::vector<std::string> taken;
  std::vector<std::string> ended;
  int timesWritable = 0;
};

using Texts = std::vector<std::string>;

TEST_F(AConnection, IsReadByTheBusThreadAsLongAsNobodyElseReads) {
  say(frame("one") + frame("two"));
  runBusThread();
  say(frame("three"));
  runBusThread();

  EXPECT_EQ(taken, (Texts{"one", "two", "three"}));
}

TEST_F(AConnection, ThatAnotherThreadReads_LeavesTheBusThreadAlone) {
  ASSERT_TRUE(sut->beginReading());
  say(frame("one"));
  runBusThread();
  EXPECT_EQ(taken, Texts{});

  EXPECT_EQ(sut->read(), Input::Read::Messages);

  EXPECT_EQ(taken, Texts{"one"});
  EXPECT_EQ(sut->read(), Input::Read::Nothing);
  sut->endReading();
}

TEST_F(AConnection, HasWhatCameMeanwhileReadByTheBusThread) {
  ASSERT_TRUE(sut->beginReading());
  say(frame("one"));
  sut->endReading();

  runBusThread();

  EXPECT_EQ(taken, Texts{"one"});
}

TEST_F(AConnection, IsReadByOneThreadAtATime) {
  ASSERT_TRUE(sut->beginReading());
  EXPECT_FALSE(sut->beginReading());
  sut->endReading();
  whenTaken = [this] { EXPECT_FALSE(sut->beginReading()); };
  say(frame("one"));
  runBusThread();
  EXPECT_EQ(taken, Texts{"one"});
  EXPECT_TRUE(sut->beginReading());
  sut->endReading();
}

TEST_F(AConnection, ThatIsNotShared_IsTheBusThreadsOnly) {
  int sockets[2] = {};
  ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, sockets), 0);
  const FileDescriptor end(sockets[1]);
  const auto unshared =
      std::make_shared<Connection>(watch, FileDescriptor(sockets[0]), kMaximumFrame);
  unshared->start();

  EXPECT_FALSE(unshared->beginReading());
}

TEST_F(AConnection, HalfOfAFrame_IsKeptForWhoeverReadsTheRest) {
  const std::string whole = frame("whole");
  ASSERT_TRUE(sut->beginReading());
  say(whole.substr(0, 6));
  EXPECT_EQ(sut->read(), Input::Read::Part);
  sut->endReading();
  say(whole.substr(6));

  runBusThread();

  EXPECT_EQ(taken, Texts{"whole"});
}

TEST_F(AConnection, ThatIsReadOnce_GivesAllThatIsThereAlsoOfLongFrames) {
  const std::string first = longFrame(65'536);
  const std::string second = longFrame(40'000);
  ASSERT_TRUE(sut->beginReading());
  say(first + second + frame("short"));

  EXPECT_EQ(sut->read(), Input::Read::Messages);

  EXPECT_EQ(taken, (Texts{first.substr(4), second.substr(4), "short"}));
  EXPECT_EQ(sut->read(), Input::Read::Nothing);
  sut->endReading();
}

TEST_F(AConnection, ThatIsReadOnce_LeavesSomeOfMuchToTheNextTime) {
  std::string much;
  std::size_t count = 0;
  for (; much.size() < 150'000; ++count) much += frame(std::string(100, 'x'));
  ASSERT_TRUE(sut->beginReading());
  say(much);

  EXPECT_EQ(sut->read(), Input::Read::Messages);
  EXPECT_LT(taken.size(), count);
  EXPECT_EQ(sut->read(), Input::Read::Messages);

  EXPECT_EQ(taken, Texts(count, std::string(100, 'x')));
  sut->endReading();
}

TEST_F(AConnection, LongFramesThatComeInPieces_AreKeptForWhoeverReadsTheRest) {
  const std::string whole = longFrame(100'000);
  ASSERT_TRUE(sut->beginReading());
  say(whole.substr(0, 50'000));
  EXPECT_EQ(sut->read(), Input::Read::Part);
  sut->endReading();
  say(whole.substr(50'000) + frame("next"));

  runBusThread();

  EXPECT_EQ(taken, (Texts{whole.substr(4), "next"}));
}

TEST_F(AConnection, WhoseOtherSideIsGoneAmidALongFrame_GivesNothingOfIt) {
  say(frame("one") + longFrame(100'000).substr(0, 50'000));
  other.reset();

  runBusThread();
  runBusThread();

  EXPECT_EQ(taken, Texts{"one"});
  EXPECT_EQ(ended, Texts{""});
}

TEST_F(AConnection, WhoseOtherSideIsGone_IsEndedOnTheBusThread) {
  ASSERT_TRUE(sut->beginReading());
  other.reset();
  EXPECT_EQ(sut->read(), Input::Read::Ended);
  runBusThread();
  EXPECT_EQ(ended, Texts{});
  sut->endReading();

  runBusThread();

  EXPECT_EQ(ended, Texts{""});
}

TEST_F(AConnection, WithSomethingWrong_IsEndedOnTheBusThreadThatIsToldWhat) {
  whenTaken = [] { throw std::runtime_error("it sent nonsense"); };
  ASSERT_TRUE(sut->beginReading());
  say(frame("one") + frame("two"));
  EXPECT_EQ(sut->read(), Input::Read::Ended);
  sut->endReading();
  EXPECT_EQ(ended, Texts{});
  // What came behind it is for nobody.
  EXPECT_FALSE(sut->beginReading());

  runBusThread();

  EXPECT_EQ(ended, Texts{"it sent nonsense"});
  EXPECT_EQ(taken, Texts{});
  EXPECT_TRUE(isClosed());
}

TEST_F(AConnection, WithSomethingWrongThatHasNoWords_IsEndedToo) {
  whenTaken = [] { throw std::runtime_error(""); };
  ASSERT_TRUE(sut->beginReading());
  say(frame("one") + frame("two"));
  EXPECT_EQ(sut->read(), Input::Read::Ended);
  whenTaken = nullptr;
  sut->endReading();

  runBusThread();

  EXPECT_EQ(ended, Texts{""});
  EXPECT_EQ(taken, Texts{});
}

TEST_F(AConnection, WithAFrameThatIsTooLong_IsEnded) {
  say(std::string(4, '\x7f'));

  runBusThread();

  EXPECT_EQ(ended, Texts{"it sent a frame that is too long"});
  EXPECT_TRUE(isClosed());
}

TEST_F(AConnection, ThatIsClosedWhileAThreadReads_EndsForBothSidesAtOnce) {
  ASSERT_TRUE(sut->beginReading());
  const int descriptor = sut->descriptor();
  sut->close();
  EXPECT_TRUE(isClosed());
  // Not given to somebody else while the thread still uses it.
  EXPECT_EQ(sut->descriptor(), descriptor);
  EXPECT_EQ(sut->read(), Input::Read::Ended);
  sut->endReading();

  EXPECT_EQ(sut->descriptor(), -1);
  EXPECT_FALSE(sut->beginReading());
  runBusThread();
  EXPECT_EQ(ended, Texts{});
}

TEST_F(AConnection, ThatIsClosed_IsWaitedForUntilNobodyReads) {
  ASSERT_TRUE(sut->beginReading());
  sut->close();
  bool over = false;
  std::thread reader([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    over = true;
    sut->endReading();
  });

  sut->waitForReader();

  EXPECT_TRUE(over);
  reader.join();
}

TEST_F(AConnection, ThatIsClosedByWhomItTells_TellsNothingMore) {
  whenTaken = [this] { sut->close(); };
  say(frame("one") + frame("two"));

  runBusThread();

  EXPECT_EQ(taken, Texts{"one"});
  EXPECT_EQ(ended, Texts{});
  EXPECT_TRUE(isClosed());
}

TEST_F(AConnection, TellsOnceThatMoreCanBeSent_AlsoWhileAnotherThreadReads) {
  ASSERT_TRUE(sut->beginReading());
  sut->awaitWritable();
  runBusThread();
  EXPECT_EQ(timesWritable, 1);
  runBusThread();
  EXPECT_EQ(timesWritable, 1);
  sut->endReading();

  sut->awaitWritable();
  say(frame("one"));
  runBusThread();
  EXPECT_EQ(timesWritable, 2);
  runBusThread();
  EXPECT_EQ(taken, Texts{"one"});
}

TEST_F(AConnection, SendsItsPiecesInOrderHoweverLongTheyAre) {
  for (const std::size_t first : {0, 1, 100, 511, 512, 513, 2000}) {
    for (const std::size_t second : {0, 1, 412, 413, 3000}) {
      std::string head(first, 'h');
      std::string data(second, 'd');
      const std::array<iovec, 2> parts{{{head.data(), first}, {data.data(), second}}};
      ASSERT_EQ(sut->send(parts), static_cast<ssize_t>(first + second));
      std::string got(first + second + 1, '-');
      ASSERT_EQ(::recv(other.get(), got.data(), got.size(), MSG_DONTWAIT),
                first + second > 0 ? static_cast<ssize_t>(first + second) : -1);
      EXPECT_EQ(got, head + data + '-');
    }
  }
}

// One that goes amid a frame would leave half of it, and nothing behind it would be understood.
TEST_F(AConnection, SendsAllThatGoesAlsoOnAThreadThatIsToBeEnded) {
  std::string text = "text";
  ssize_t sent = 0;
  std::thread sender([&] {
    ::pthread_cancel(::pthread_self());
    iovec part{text.data(), text.size()};
    sent = sut->send({&part, 1});
    ::pthread_testcancel();
  });
  sender.join();
  EXPECT_EQ(sent, 4);
}

TEST_F(AConnection, ThatIsFull_WaitsUntilItIsRead) {
  std::string much(1024UL * 1024, 'x');
  iovec part{much.data(), much.size()};
  ASSERT_GT(sut->send({&part, 1}), 0);
  ASSERT_EQ(sut->send({&part, 1}), -EAGAIN);
  sut->awaitWritable();
  runBusThread();
  EXPECT_EQ(timesWritable, 0);

  while (::recv(other.get(), much.data(), much.size(), MSG_DONTWAIT) > 0) continue;
  runBusThread();

  EXPECT_EQ(timesWritable, 1);
}

}  // namespace
