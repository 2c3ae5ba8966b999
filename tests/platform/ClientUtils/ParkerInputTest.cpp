#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <functional>
#include <mutex>
#include <thread>

#include "runtime/libClientUtils/Parker.h"
#include "runtime/libClientUtils/WakeLine.h"
#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

using std::chrono::milliseconds;

// So late that a thread that is not woken is noticed.
Clock::time_point late() { return Clock::now() + std::chrono::hours(24); }

/** A pipe whose bytes are messages; each is handed to a function. */
class PipeInput final : public Input {
 public:
  using Handler = std::function<void(char message)>;

  explicit PipeInput(Handler handler) : handler_(std::move(handler)) {
    EXPECT_EQ(::pipe2(ends_.data(), O_NONBLOCK | O_CLOEXEC), 0);
  }
  virtual ~PipeInput() {
    ::close(ends_[0]);
    finish();
  }

  /** Blocks while the pipe is full: somebody must be reading. */
  void say(char message) const {
    while (!sayIfThereIsRoom(message)) std::this_thread::yield();
  }

  bool sayIfThereIsRoom(char message) const { return ::write(ends_[1], &message, 1) == 1; }

  /** Nothing comes any more. */
  void finish() {
    if (ends_[1] >= 0) ::close(std::exchange(ends_[1], -1));
  }

  int timesBegun() const { return begun_; }
  bool isRead() const { return reading_; }

  bool beginReading() override {
    if (reading_.exchange(true)) return false;
    ++begun_;
    return true;
  }

  Read read() override {
    char message = 0;
    const ssize_t size = ::read(ends_[0], &message, 1);
    if (size < 0) return Read::Nothing;
    if (size == 0) return Read::Ended;
    if (message == kPart) return Read::Part;
    handler_(message);
    return Read::Messages;
  }

  void endReading() override { reading_ = false; }
  int descriptor() const override { return ends_[0]; }
  int wakeLine() const override { return line_.descriptor(); }

  static constexpr char kPart = 'p';

 private:
  const Handler handler_;
  const WakeLine line_;
  std::array<int, 2> ends_{-1, -1};
  std::atomic<bool> reading_{false};
  std::atomic<int> begun_{0};
};

class AParkerAtAnInput : public testing::Test {
 protected:
  Parker sut;
  std::string others;
  PipeInput input{[this](char message) {
    if (message == 'm') {
      sut.unpark();
    } else {
      others += message;
    }
  }};
};

TEST_F(AParkerAtAnInput, ReadsItselfWhatItWaitsFor) {
  input.say('m');

  EXPECT_TRUE(sut.park(late(), &input));

  EXPECT_EQ(input.timesBegun(), 1);
  EXPECT_FALSE(input.isRead());
}

TEST_F(AParkerAtAnInput, SleepsUntilSomethingComes) {
  std::thread sender([&] {
    EXPECT_TRUE(waitUntil([&] { return input.isRead(); }));
    std::this_thread::sleep_for(milliseconds(2));
    input.say(PipeInput::kPart);
    std::this_thread::sleep_for(milliseconds(2));
    input.say('m');
  });
  EXPECT_TRUE(sut.park(late(), &input));
  sender.join();
  EXPECT_EQ(input.timesBegun(), 1);
}

TEST_F(AParkerAtAnInput, IsUnparkedByOthersToo) {
  std::thread other([&] {
    EXPECT_TRUE(waitUntil([&] { return input.isRead(); }));
    std::this_thread::sleep_for(milliseconds(2));
    sut.unpark();
  });
  EXPECT_TRUE(sut.park(late(), &input));
  other.join();
}

TEST_F(AParkerAtAnInput, ThatWasUnparkedBefore_DoesNotRead) {
  sut.unpark();

  EXPECT_TRUE(sut.park(late(), &input));

  EXPECT_EQ(input.timesBegun(), 0);
}

TEST_F(AParkerAtAnInput, KeepsItsDeadline) {
  const auto begin = Clock::now();

  EXPECT_FALSE(sut.park(begin + milliseconds(20), &input));

  EXPECT_GE(Clock::now() - begin, milliseconds(20));
  EXPECT_FALSE(input.isRead());
}

TEST_F(AParkerAtAnInput, WhoseDeadlineIsOver_StillTakesAnUnparkingThatCame) {
  sut.unpark();

  EXPECT_TRUE(sut.park(Clock::now() - milliseconds(1), &input));
}

TEST_F(AParkerAtAnInput, ThatHasReadWhatIsForOthers_ReturnsAndLeavesTheNextReadingToThem) {
  input.say('x');
  EXPECT_TRUE(sut.park(late(), &input));
  EXPECT_EQ(others, "x");

  input.say('y');
  EXPECT_FALSE(sut.park(Clock::now() + milliseconds(5), &input));
  EXPECT_EQ(others, "x");
  EXPECT_EQ(input.timesBegun(), 1);

  EXPECT_TRUE(sut.park(late(), &input));
  EXPECT_EQ(others, "xy");
}

TEST_F(AParkerAtAnInput, ThatSomebodyElseReads_WaitsToBeUnparked) {
  ASSERT_TRUE(input.beginReading());
  input.say('m');
  EXPECT_FALSE(sut.park(Clock::now() + milliseconds(5), &input));

  EXPECT_EQ(input.read(), Input::Read::Messages);

  EXPECT_TRUE(sut.park(late(), &input));
  EXPECT_EQ(input.timesBegun(), 1);
}

TEST_F(AParkerAtAnInput, ThatHasEnded_ReturnsToLookForItself) {
  input.finish();

  EXPECT_TRUE(sut.park(late(), &input));
  // Whoever looks after it comes to it now.
  EXPECT_FALSE(sut.park(Clock::now() + milliseconds(5), &input));
  EXPECT_EQ(input.timesBegun(), 1);
}

TEST_F(AParkerAtAnInput, ThatGaveItsThreadWork_IsReadWhenTheWorkIsDone) {
  const auto shared = std::make_shared<PipeInput>([this](char) { sut.unpark(); });
  sut.isGivenWorkFrom(shared);
  shared->say('m');

  sut.park();

  EXPECT_EQ(shared->timesBegun(), 1);
  sut.isGivenWorkFrom(nullptr);
  shared->say('m');
  sut.unpark();
  sut.park();
  EXPECT_EQ(shared->timesBegun(), 1);
}

TEST_F(AParkerAtAnInput, ThatIsGone_IsNotKept) {
  auto shared = std::make_shared<PipeInput>([](char) {});
  const std::weak_ptr<PipeInput> seen = shared;
  sut.isGivenWorkFrom(shared);

  shared.reset();

  EXPECT_TRUE(seen.expired());
  sut.unpark();
  sut.park();
}

TEST_F(AParkerAtAnInput, ThatEndsWhileItsThreadHasNothingToDo_IsNotKept) {
  auto shared = std::make_shared<PipeInput>([](char) {});
  const std::weak_ptr<PipeInput> seen = shared;
  std::thread idle([&] {
    sut.isGivenWorkFrom(shared);
    shared->finish();
    sut.park();  // has ended
    sut.park();
  });
  EXPECT_TRUE(waitUntil([&] { return shared->timesBegun() == 1 && !shared->isRead(); }));
  shared.reset();

  EXPECT_TRUE(waitUntil([&] { return seen.expired(); }));

  sut.unpark();
  idle.join();
}

// It would keep others from what it has read for as long as any other thread has something to do.
TEST_F(AParkerAtAnInput, WhoseThreadRunsOnlyWhenNoOtherDoes_DoesNotRead) {
  std::thread([&] {
    const sched_param parameters{};
    ASSERT_EQ(::sched_setscheduler(0, SCHED_IDLE, &parameters), 0);
    input.say('m');
    EXPECT_FALSE(sut.park(Clock::now() + milliseconds(5), &input));
  }).join();
  EXPECT_EQ(input.timesBegun(), 0);
}

TEST_F(AParkerAtAnInput, WhoseThreadIsNicerThanOthers_DoesNotRead) {
  std::thread([&] {
    ASSERT_EQ(::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), 19), 0);
    input.say('m');
    EXPECT_FALSE(sut.park(Clock::now() + milliseconds(5), &input));
  }).join();
  EXPECT_EQ(input.timesBegun(), 0);
}

TEST_F(AParkerAtAnInput, KeepsItsDeadlineHoweverMuchComesThatIsNothingWhole) {
  std::atomic<bool> over{false};
  std::thread sender([&] {
    while (!over) input.sayIfThereIsRoom(PipeInput::kPart);  // nobody reads at the end
  });
  EXPECT_FALSE(sut.park(Clock::now() + milliseconds(20), &input));
  over = true;
  sender.join();
}

// Whoever comes next finds the thread unparked already, and does not wake it either.
TEST_F(AParkerAtAnInput, IsUnparkedByAThreadThatIsToBeEnded) {
  std::thread other([&] {
    EXPECT_TRUE(waitUntil([&] { return input.isRead(); }));
    std::this_thread::sleep_for(milliseconds(2));
    ::pthread_cancel(::pthread_self());
    sut.unpark();
    ::pthread_testcancel();
  });
  EXPECT_TRUE(sut.park(late(), &input));
  other.join();
}

TEST_F(AParkerAtAnInput, DoesNotEndItsThreadThatIsToBeEndedBeforeItHasReturned) {
  std::atomic<bool> returned{false};
  std::thread thread([&] {
    sut.park(late(), &input);
    returned = true;
    for (;;) ::pthread_testcancel();
  });
  ASSERT_TRUE(waitUntil([&] { return input.isRead(); }));
  ::pthread_cancel(thread.native_handle());
  std::this_thread::sleep_for(milliseconds(2));
  EXPECT_TRUE(input.isRead());
  input.say('m');
  thread.join();
  EXPECT_TRUE(returned);
  EXPECT_FALSE(input.isRead());
}

// Whether the thread reads, looks or sleeps in either way changes all the time here.
TEST_F(AParkerAtAnInput, LosesNeitherUnparkingsNorMessages) {
  constexpr int kRounds = 20000;
  std::atomic<int> unparked{0};
  std::atomic<int> read{0};
  Parker parker;
  PipeInput both([&](char) {
    ++read;
    parker.unpark();
  });
  std::atomic<int> done{0};
  std::thread other([&] {
    for (int round = 1; round <= kRounds; ++round) {
      if (round % 3 != 0) {
        ++unparked;
        parker.unpark();
      } else {
        both.say('m');
      }
      if (round % 1000 == 0) std::this_thread::sleep_for(milliseconds(1));
      while (done < round) std::this_thread::yield();
    }
  });
  for (int round = 1; round <= kRounds; ++round) {
    while (unparked + read < round) ASSERT_TRUE(parker.park(late(), &both));
    done = round;
  }
  other.join();
}

TEST(AWakeLine, IsUsedAgain) {
  int first = -1;
  {
    const WakeLine sut;
    first = sut.descriptor();
    ASSERT_GE(first, 0);
  }
  const WakeLine next;
  EXPECT_EQ(next.descriptor(), first);
}

}  // namespace
}  // namespace zerva
