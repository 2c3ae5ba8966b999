#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include <functional>
#include <thread>

#include "runtime/libClientUtils/bus/Frames.h"
#include "tests/platform/Bus/StrangerWorld.h"
#include "tests/platform/RecordingSink.h"
#include "tests/support/FileText.h"
#include "tests/support/WaitUntil.h"

namespace {

using namespace zerva;
using testing::AnyOf;
using testing::HasSubstr;

TEST_F(AStranger, ThatSaysHello_IsWelcomeAndServed) {
  Stranger stranger(socketPath());
  stranger.say(hello());
  const std::string heard = stranger.hear();
  const Frame frame = decodeFrame(heard);
  const auto& welcome = std::get<WelcomeFrame>(frame);
  EXPECT_EQ(welcome.version, kWireVersion);
  EXPECT_EQ(std::string(welcome.id) + ".sock",
            std::filesystem::path(socketPath()).filename().string());
  stranger.say(request(5, "/echo", "hi"));
  EXPECT_EQ(stranger.hear(), (encodeHead(ReplyFrame{5, "hi"}) + "hi").substr(4));
}

TEST_F(AStranger, ThatAsksForAChannelThatNobodyServes_IsToldSo) {
  Stranger stranger(socketPath());
  stranger.say(hello());
  stranger.hear();
  stranger.say(request(5, "/nobody", ""));
  EXPECT_THAT(stranger.hear(), HasSubstr("nobody serves channel '/nobody'"));
}

TEST_F(AStranger, ThatAsksAProcessThatIsEnding_IsToldSo) {
  Stranger stranger(socketPath());
  stranger.say(hello());
  stranger.hear();
  sut.closeToOutside();
  stranger.say(request(5, "/echo", ""));
  EXPECT_THAT(stranger.hear(), HasSubstr("process " + std::to_string(::getpid()) + " is ending"));
}

TEST_F(AStranger, ThatTalksNonsense_IsDismissedWithOneLogLine) {
  for (const std::string& nonsense :
       {std::string("GET / HTTP/1.1\r\n\r\n"), std::string(4, '\0') + "x", std::string(100, '\xff'),
        encodeHead(ReplyFrame{1, "x"}) + "x", std::string("\0\0\0\1\7", 5)}) {
    const RecordingSink log("Bus");
    Stranger stranger(socketPath());
    stranger.say(nonsense);
    EXPECT_TRUE(stranger.isDismissed());
    EXPECT_TRUE(waitUntil([&] { return !log.texts().empty(); }));
    EXPECT_EQ(log.texts().size(), 1U);
  }
  expectWorking();
}

TEST_F(AStranger, ThatTalksNonsenseAfterItsHello_IsDismissedWithOneLogLine) {
  for (const std::string& nonsense :
       {std::string("\xff\xff\xff\xff"), std::string("\0\0\0\1\x63", 5), hello(),
        encodeHead(WelcomeFrame{1, id}), encodeHead(CrossedFrame{}),
        std::string("\0\0\0\3\5ab", 7)}) {
    const RecordingSink log("Bus");
    Stranger stranger(socketPath());
    stranger.say(hello());
    stranger.hear();
    stranger.say(nonsense);
    EXPECT_TRUE(stranger.isDismissed());
    EXPECT_TRUE(waitUntil([&] { return !log.texts().empty(); }));
    EXPECT_EQ(log.texts().size(), 1U);
  }
  expectWorking();
}

TEST_F(AStranger, ThatSaysItIsSomebodyElse_IsDismissed) {
  const std::string own = std::filesystem::path(socketPath()).stem();
  for (const std::string& stolen : {std::string("1-0123456789abcdef"), own, std::string("../x"),
                                    std::to_string(::getpid()), std::string()}) {
    Stranger stranger(socketPath());
    stranger.say(encodeHead(HelloFrame{kWireVersion, stolen}));
    EXPECT_TRUE(stranger.isDismissed()) << stolen;
  }
  expectWorking();
}

/** Does something as another user; only root can, everybody else stays who he is. */
void asAnotherUser(const std::function<void()>& something) {
  std::thread([&] {
    constexpr int kNobody = 65534;
    // Of this thread alone, which ends with it.
    if (::geteuid() == 0) {
      EXPECT_EQ(::syscall(SYS_setresuid, kNobody, kNobody, kNobody), 0);
    }
    something();
  }).join();
}

TEST_F(AStranger, OfAnotherUser_DoesNotGetAsFarAsTheSocket) {
  const sockaddr_un address = addressOf(socketPath());
  const bool another = ::geteuid() == 0;
  ::chmod(directory.path().c_str(), 0755);
  asAnotherUser([&] {
    const FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
    EXPECT_EQ(::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
              another ? -1 : 0);
  });
  expectWorking();
}

TEST_F(AStranger, OfAnotherUser_IsDismissedEvenWhereTheDirectoryIsOpen) {
  const RecordingSink log("Bus");
  const std::string socket = socketPath();
  ::chmod(directory.path().c_str(), 0755);
  ::chmod(path.c_str(), 0755);
  ::chmod(socket.c_str(), 0777);
  const bool another = ::geteuid() == 0;
  asAnotherUser([&] {
    Stranger stranger(socket);
    stranger.say(hello());
    EXPECT_EQ(stranger.hear().empty(), another);
  });
  if (another) {
    EXPECT_THAT(log.texts(), testing::Contains("a connection of another user is refused"));
  }
  expectWorking();
}

TEST_F(AStranger, OfAnotherVersion_IsToldTheOwnOneAndDismissed) {
  Stranger stranger(socketPath());
  stranger.say(hello(kWireVersion + 1));
  const std::string heard = stranger.hear();
  EXPECT_EQ(std::get<WelcomeFrame>(decodeFrame(heard)).version, kWireVersion);
  EXPECT_TRUE(stranger.isDismissed());
}

TEST_F(AStranger, ThatConnectsASecondTime_KeepsItsFirstConnection) {
  Stranger first(socketPath());
  first.say(hello());
  first.hear();
  Stranger second(socketPath());
  second.say(hello());
  EXPECT_TRUE(std::holds_alternative<CrossedFrame>(decodeFrame(second.hear())));
  EXPECT_TRUE(second.isDismissed());
  first.say(request(1, "/echo", "x"));
  EXPECT_EQ(first.hear(), (encodeHead(ReplyFrame{1, "x"}) + "x").substr(4));
}

TEST_F(AStranger, ThatGaveItsFirstConnectionUp_IsTakenAgain) {
  for (int i = 0; i < 20; ++i) {
    Stranger stranger(socketPath());
    stranger.say(hello());
    EXPECT_TRUE(std::holds_alternative<WelcomeFrame>(decodeFrame(stranger.hear())));
  }
}

/** A name that the bus has never heard of, of this process. */
std::string anotherName(int number) {
  const std::string digits = std::to_string(number);
  return std::to_string(::getpid()) + "-" + std::string(16 - digits.size(), '0') + digits;
}

std::unique_ptr<Stranger> greetAs(const std::string& socket, const std::string& name) {
  auto stranger = std::make_unique<Stranger>(socket);
  stranger->say(encodeHead(HelloFrame{kWireVersion, name}));
  return stranger;
}

// Each name held a descriptor and the beginning of a frame of up to 16 MiB, and names were to be
// had without end.
TEST_F(AStranger, ThatTakesNameAfterName_HasFourAtMost) {
  const RecordingSink log("Bus");
  std::vector<std::unique_ptr<Stranger>> taken;
  for (int name = 0; name < 4; ++name) {
    taken.push_back(greetAs(socketPath(), anotherName(name)));
    EXPECT_TRUE(std::holds_alternative<WelcomeFrame>(decodeFrame(taken.back()->hear())));
  }
  for (int name = 4; name < 40; ++name) {
    EXPECT_EQ(greetAs(socketPath(), anotherName(name))->hear(), "");
  }
  EXPECT_TRUE(waitUntil([&] { return log.texts().size() == 36; }));
  EXPECT_EQ(log.texts().back(), "a connection is refused: process " + std::to_string(::getpid()) +
                                    " is connected under 4 names already");
  taken.front()->say(request(1, "/echo", "x"));
  EXPECT_EQ(taken.front()->hear(), (encodeHead(ReplyFrame{1, "x"}) + "x").substr(4));
}

TEST_F(AStranger, ThatOpensItsBusAgainAndAgain_IsTakenUnderEachName) {
  for (int name = 0; name < 40; ++name) {
    EXPECT_TRUE(std::holds_alternative<WelcomeFrame>(
        decodeFrame(greetAs(socketPath(), anotherName(name))->hear())));
  }
}

TEST_F(AStranger, ThatSaysHalfAMessageAfterItsHello_HoldsUpNobody) {
  Stranger stranger(socketPath());
  stranger.say(hello());
  stranger.hear();
  const std::string whole = request(1, "/echo", std::string(100'000, 'x'));
  stranger.say(whole.substr(0, whole.size() / 2));

  expectWorking();

  stranger.say(whole.substr(whole.size() / 2));
  EXPECT_THAT(stranger.hear(), testing::SizeIs(100'005));
}

TEST_F(AStranger, ThatSaysNothing_HoldsUpNobodyAndIsNotKeptForEver) {
  std::vector<std::unique_ptr<Stranger>> silent;
  for (int i = 0; i < 70; ++i) {
    silent.push_back(std::make_unique<Stranger>(socketPath()));
    silent.back()->say("\0\0");
  }
  EXPECT_TRUE(silent.front()->isDismissed());
  expectWorking();
}

TEST_F(AStranger, ThatAnswersWhatItWasNotAsked_IsNotHeard) {
  Stranger stranger(socketPath());
  stranger.say(hello());
  stranger.hear();
  stranger.say(encodeHead(ReplyFrame{1, "forged"}) + "forged");
  stranger.say(encodeHead(FailureFrame{2, "forged"}) + "forged");
  stranger.say(request(1, "/echo", "x"));
  EXPECT_EQ(stranger.hear(), (encodeHead(ReplyFrame{1, "x"}) + "x").substr(4));
}

TEST_F(AStranger, ThatReadsLate_GetsWhatWasSentAsItWasThen) {
  const int listening = listenAs(id, "/late");
  CommsChannel channel("/test/one", nullptr);
  std::string text;
  const auto send = [&](char what) {
    text.assign(70'000, what);
    EXPECT_TRUE(channel.sendTo("/late", text));
    text.assign(70'000, '-');
  };
  for (char what = 'a'; what < 'e'; ++what) send(what);
  Stranger stranger(::accept(listening, nullptr, nullptr));
  stranger.hear();
  stranger.say(encodeHead(WelcomeFrame{kWireVersion, id}));
  // What is sent now finds the connection open and then full, or has to wait behind the others.
  for (char what = 'e'; what < 'z'; ++what) send(what);
  for (char what = 'a'; what < 'z'; ++what) {
    const std::string heard = stranger.hear();
    const Frame frame = decodeFrame(heard);
    const auto* const message = std::get_if<MessageFrame>(&frame);
    ASSERT_NE(message, nullptr);
    EXPECT_TRUE(message->data == std::string(70'000, what)) << what << message->data[0];
  }
  ::close(listening);
}

TEST_F(AStranger, ThatDiesAmidALongMessage_HoldsUpNobody) {
  {
    Stranger stranger(socketPath());
    stranger.say(hello());
    stranger.hear();
    stranger.say(request(1, "/echo", std::string(100'000, 'x')).substr(0, 60'000));
  }
  expectWorking();
}

TEST_F(AStranger, ThatIsFoundAndTakesNoConnection_IsGivenUpInTime) {
  const int listening = listenAs(id, "/silent");
  const ReplyTimeoutOf shortTime(std::chrono::milliseconds(30));
  EXPECT_EQ(ask("/silent", "x").error, "channel '/silent' did not answer in time");
  expectWorking();
  ::close(listening);
}

TEST_F(AStranger, ThatIsFoundAndAnswersWithNonsense_FailsWhatWaits) {
  const ReplyTimeoutOf longTime(std::chrono::hours(1));
  const int listening = listenAs(id, "/mad");
  std::string error;
  std::thread asking([&] { error = ask("/mad", "x").error; });
  Stranger stranger(::accept(listening, nullptr, nullptr));
  stranger.hear();
  stranger.say(encodeHead(WelcomeFrame{kWireVersion, id}));
  stranger.hear();
  stranger.say(std::string(100, '\xff'));
  asking.join();
  EXPECT_THAT(error, HasSubstr("the connection to process " + std::to_string(::getpid()) +
                               " was ended: it sent a frame that is too long"));
  ::close(listening);
  expectWorking();
}

TEST_F(AStranger, ThatIsFoundAndSpeaksAnotherVersion_FailsWhatWaitsAndIsNotAskedAgain) {
  const ReplyTimeoutOf longTime(std::chrono::hours(1));
  const int listening = listenAs(id, "/later");
  std::string error;
  std::thread asking([&] { error = ask("/later", "x").error; });
  Stranger stranger(::accept(listening, nullptr, nullptr));
  stranger.say(encodeHead(WelcomeFrame{kWireVersion + 1, id}));
  asking.join();
  // It may be known already when the request is handed over.
  EXPECT_THAT(error, AnyOf(HasSubstr("it speaks version 2 of the bus, not 1"),
                           HasSubstr("speaks another version of the bus")));
  EXPECT_EQ(ask("/later", "x").error,
            "process " + std::to_string(::getpid()) + " speaks another version of the bus");
  ::close(listening);
}

TEST_F(AStranger, WhoHasAnswered_IsHeardOnceAndForItsOwnRequestOnly) {
  const ReplyTimeoutOf longTime(std::chrono::hours(1));
  const int listening = listenAs(id, "/slow");
  Answer answer{};
  std::thread asking([&] { answer = ask("/slow", "question"); });
  Stranger stranger(::accept(listening, nullptr, nullptr));
  EXPECT_TRUE(std::holds_alternative<HelloFrame>(decodeFrame(stranger.hear())));
  stranger.say(encodeHead(WelcomeFrame{kWireVersion, id}));
  const std::string heard = stranger.hear();
  const Frame frame = decodeFrame(heard);
  const auto& asked = std::get<RequestFrame>(frame);
  EXPECT_EQ(asked.message.data, "question");
  EXPECT_EQ(asked.message.to, "/slow");
  EXPECT_EQ(asked.message.from, "/test/caller");
  stranger.say(encodeHead(ReplyFrame{asked.wireId + 1, "x"}) + "x");
  stranger.say(encodeHead(ReplyFrame{asked.wireId, "right"}) + "right");
  stranger.say(encodeHead(ReplyFrame{asked.wireId, "twice"}) + "twice");
  asking.join();
  EXPECT_EQ(answer.data, "right");
  ::close(listening);
}

// Both have got a request of the same number.
TEST_F(AStranger, ThatAnswersWhatAnotherWasAsked_IsNotHeard) {
  const ReplyTimeoutOf longTime(std::chrono::hours(1));
  const int listening = listenAs(id, "/slow");
  Answer answer{};
  std::thread asking([&] { answer = ask("/slow", "question"); });
  Stranger asked(::accept(listening, nullptr, nullptr));
  asked.hear();
  asked.say(encodeHead(WelcomeFrame{kWireVersion, id}));
  const std::string heard = asked.hear();
  const Frame frame = decodeFrame(heard);
  const std::uint32_t wireId = std::get<RequestFrame>(frame).wireId;

  Stranger other(socketPath());
  other.say(encodeHead(HelloFrame{kWireVersion, otherId}));
  other.hear();
  other.say(encodeHead(ReplyFrame{wireId, "forged"}) + "forged");
  other.say(encodeHead(FailureFrame{wireId, "forged"}) + "forged");
  other.say(request(7, "/echo", "x"));
  EXPECT_EQ(other.hear(), (encodeHead(ReplyFrame{7, "x"}) + "x").substr(4));

  asked.say(encodeHead(ReplyFrame{wireId, "right"}) + "right");
  asking.join();
  EXPECT_EQ(answer.data, "right") << answer.error;
  ::close(listening);
}

#if !defined(__SANITIZE_ADDRESS__)
// Not under that sanitizer: its check of an object's type opens descriptors, and where none are
// left it calls good objects bad ones.
TEST_F(AStranger, WhenThereAreNoDescriptorsLeft_IsTakenLater) {
  Stranger before(socketPath());
  before.say(hello());
  before.hear();
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
  const std::string where = socketPath();
  std::vector<int> taken;
  int one = ::socket(AF_UNIX, SOCK_STREAM, 0);
  // The next socket of this process, which is the one that the bus accepts, is one too many.
  const rlimit none{static_cast<rlim_t>(one) + 1, limit.rlim_max};
  const RecordingSink log("Bus");
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  for (int filler = ::dup(one); filler >= 0; filler = ::dup(one)) taken.push_back(filler);
  const sockaddr_un address = addressOf(where);
  EXPECT_EQ(::connect(one, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  EXPECT_TRUE(waitUntil([&] { return !log.texts().empty(); }));
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
  for (const int filler : taken) ::close(filler);
  Stranger late(one);
  late.say(encodeHead(HelloFrame{kWireVersion, otherId}));
  EXPECT_TRUE(std::holds_alternative<WelcomeFrame>(decodeFrame(late.hear())));
}
#endif

}  // namespace
