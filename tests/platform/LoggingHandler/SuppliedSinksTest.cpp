#include <gmock/gmock.h>

#include <atomic>
#include <cwchar>
#include <stdexcept>
#include <thread>

#include "tests/platform/LoggingHandler/LoggingTest.h"
#include "tests/platform/RecordingSink.h"
#include "tests/support/Barrier.h"
#include "tests/support/FileText.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class ASinkOfTheProgram : public LoggingTest {
 protected:
  ASinkOfTheProgram() {
    std::string error;
    LogSettings::logToFile(directory.file("log"), error);
  }
  void log(int level, const char* line) {
    logAppUni(module.c_str(), "src/File", level, 12, "%s", line);
  }
  std::string ordinary() const { return readFile(directory.file("log")); }

  const TempDirectory directory;
};

TEST_F(ASinkOfTheProgram, GetsEverythingAboutALine) {
  const RecordingSink sut;
  const auto before = std::chrono::system_clock::now();

  log(3, "a line\nof two");

  ASSERT_EQ(sut.records().size(), 1U);
  const LogRecord record = sut.records().front();
  EXPECT_EQ(record.module, module);
  EXPECT_EQ(record.file, "src/File");
  EXPECT_EQ(record.level, 3);
  EXPECT_EQ(record.line, 12);
  EXPECT_EQ(record.text, "a line\nof two");
  EXPECT_GE(record.time, before);
}

TEST_F(ASinkOfTheProgram, GetsOnlyLinesOfItsModuleUpToItsLevel) {
  const RecordingSink sut(module, 6);

  log(6, "of the level");
  log(7, "above the level");
  logAppUni("some other module", "src/File", 2, 1, "of another module");

  EXPECT_THAT(sut.texts(), ElementsAre("of the level"));
}

TEST_F(ASinkOfTheProgram, GetsLinesThatTheOrdinarySinksAreNotToHave) {
  const RecordingSink sut(module, 6);

  log(4, "for all");
  log(5, "for the sink");

  EXPECT_THAT(sut.texts(), ElementsAre("for all", "for the sink"));
  EXPECT_THAT(ordinary(), HasSubstr("for all"));
  EXPECT_THAT(ordinary(), Not(HasSubstr("for the sink")));
}

TEST_F(ASinkOfTheProgram, DoesNotKeepErrorsFromTheOrdinarySinks) {
  LogSettings::setLevel(module, 0);
  const RecordingSink sut(module, 6);

  log(2, "an error");

  EXPECT_THAT(ordinary(), HasSubstr("an error"));
}

TEST_F(ASinkOfTheProgram, GetsNothingMoreWhenItWasRemoved) {
  RecordingSink sut;
  LogSettings::removeSink(sut);

  log(2, "too late");

  EXPECT_THAT(sut.texts(), IsEmpty());
}

TEST_F(ASinkOfTheProgram, MayLogItselfAndDoesNotGetThoseLines) {
  RecordingSink sut(module);
  const RecordingSink other(module);
  sut.onWrite = [&](const LogRecord&) { log(4, "from the sink"); };

  log(4, "a line");

  EXPECT_THAT(sut.texts(), ElementsAre("a line"));
  EXPECT_THAT(other.texts(), testing::UnorderedElementsAre("a line", "from the sink"));
}

TEST_F(ASinkOfTheProgram, IsCalledWithNoLockOfTheLoggerHeld) {
  RecordingSink sut(module);
  RecordingSink another("another module");
  std::atomic<bool> done{false};
  sut.onWrite = [&](const LogRecord&) {
    std::thread([&] {
      std::string error;
      LogSettings::setLevel(module, 5);
      LogSettings::logToFile(directory.file("log"), error);
      LogSettings::removeSink(another);
      LogSettings::flush();
      logAppUni("another module", "src/File", 4, 1, "while the sink is called");
      done = true;
    }).join();
  };

  log(4, "a line");

  EXPECT_TRUE(done);
}

TEST_F(ASinkOfTheProgram, IsToldOfATextThatCannotBeFormatted) {
  const RecordingSink sut(module);
  // No character of the C locale.
  logAppUni(module.c_str(), "src/File", 4, 12, "wide: %lc", static_cast<wint_t>(0x10ffff));
  EXPECT_THAT(sut.texts(), ElementsAre("(a text that cannot be formatted) wide: %lc"));
}

TEST_F(ASinkOfTheProgram, ThatThrows_IsReportedAndLosesNoOtherSink) {
  RecordingSink sut(module);
  const RecordingSink other(module);
  sut.onWrite = [](const LogRecord&) { throw std::runtime_error("no ink"); };

  EXPECT_NO_THROW(log(4, "a line"));

  EXPECT_THAT(other.texts(), ElementsAre("a line"));
  EXPECT_THAT(ordinary(), HasSubstr("A log sink threw on a line of '" + module + "': no ink"));
}

TEST_F(ASinkOfTheProgram, ThatThrowsWhatIsNoException_IsReportedAndLosesNoOtherSink) {
  RecordingSink sut(module);
  const RecordingSink other(module);
  sut.onWrite = [](const LogRecord&) { throw 7; };

  EXPECT_NO_THROW(log(4, "a line"));

  EXPECT_THAT(other.texts(), ElementsAre("a line"));
  EXPECT_THAT(ordinary(), HasSubstr("A log sink threw on a line of '" + module +
                                    "': something that is no std::exception"));
}

TEST_F(ASinkOfTheProgram, IsNotCalledAnyMoreWhenItsRemovalHasReturned) {
  auto sut = std::make_unique<RecordingSink>(module);
  std::atomic<bool> inCall{false};
  std::atomic<bool> leaving{false};
  Gate gate;
  sut->onWrite = [&](const LogRecord&) {
    inCall = true;
    gate.wait();
    leaving = true;
  };
  std::jthread logger([&] { log(4, "a line"); });
  ASSERT_TRUE(waitUntil([&] { return inCall.load(); }));
  std::atomic<bool> leftBeforeRemoval{false};
  std::jthread remover([&] {
    LogSettings::removeSink(*sut);
    leftBeforeRemoval = leaving.load();
  });

  // Lines do not reach it from the beginning of the removal, which waits for the call under way.
  ASSERT_TRUE(waitUntil([&] { return !loggingOnAppUni(module.c_str(), 50); }));
  gate.open();
  remover.join();

  EXPECT_TRUE(leftBeforeRemoval);
  EXPECT_EQ(sut->records().size(), 1U);
}

// The second thread to remove a sink once found nothing to wait for, and deleted it too early.
TEST_F(ASinkOfTheProgram, IsNotCalledAnyMoreWhenASecondRemovalHasReturned) {
  RecordingSink sut(module);
  std::atomic<bool> leaving{false};
  Gate gate;
  sut.onWrite = [&](const LogRecord&) {
    gate.wait();
    leaving = true;
  };
  std::jthread logger([&] { log(4, "a line"); });
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  std::jthread first([&] { LogSettings::removeSink(sut); });
  ASSERT_TRUE(waitUntil([&] { return !loggingOnAppUni(module.c_str(), 50); }));
  std::jthread opening([&] { gate.open(); });

  LogSettings::removeSink(sut);

  EXPECT_TRUE(leaving);
}

TEST_F(ASinkOfTheProgram, MayRemoveItself) {
  RecordingSink sut(module);
  sut.onWrite = [&](const LogRecord&) { LogSettings::removeSink(sut); };

  log(4, "first");
  log(4, "second");

  EXPECT_THAT(sut.texts(), ElementsAre("first"));
}

TEST_F(ASinkOfTheProgram, MayRemoveItselfOnTwoThreadsAtOnce) {
  RecordingSink sut(module);
  Barrier bothInCall(2);
  sut.onWrite = [&](const LogRecord&) {
    bothInCall.arriveAndWait();
    LogSettings::removeSink(sut);
    bothInCall.arriveAndWait();  // neither waits for the other's call to end
  };

  {
    std::jthread one([&] { log(4, "one"); });
    std::jthread two([&] { log(4, "two"); });
  }

  EXPECT_EQ(sut.records().size(), 2U);
}

}  // namespace
}  // namespace zerva
