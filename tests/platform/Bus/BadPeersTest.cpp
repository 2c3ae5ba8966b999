#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

#include "tests/platform/Bus/StrangerWorld.h"

// A process that is bothered for long. Under a sanitizer memory that is given back is kept for a
// while, so that its size tells nothing.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

namespace {

using namespace zerva;

constexpr int kRounds = 4000;
constexpr int kFirstRounds = 500;
constexpr long kMostGrowth = 4L * 1024 * 1024;

class APeerThatIsBad : public BusWorld {
 protected:
  std::string socketOfPartner() const {
    const std::string process = std::to_string(partner.process().id()) + "-";
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
      const std::string name = entry.path().filename();
      if (name.starts_with(process) && name.ends_with(".sock")) return entry.path();
    }
    return "no socket";
  }

  /** In bytes. */
  long residentOfPartner() const {
    std::ifstream file("/proc/" + std::to_string(partner.process().id()) + "/statm");
    long all = 0;
    long resident = 0;
    file >> all >> resident;
    return resident * ::sysconf(_SC_PAGESIZE);
  }

  /** Says something of each bad kind, and goes. */
  void bother(const std::string& socket) const {
    // Of 4 MiB, but it does not come to that.
    std::string half("\0\x40\0\0", 4);
    half.append(256UL * 1024, 'x');
    const std::string greeting = encodeHead(HelloFrame{kWireVersion, id});
    for (const std::string& said :
         {std::string(200, '\xff'), greeting.substr(0, 9),
          greeting + std::string("\0\0\0\1\x63", 5),
          greeting + encodeHead(ReplyFrame{1, "forged"}) + "forged", greeting + half}) {
      Stranger(socket).say(said);
    }
  }

  const std::string id = std::to_string(::getpid()) + "-0123456789abcdef";
  mutable BusPartner partner{path, "/control"};
};

TEST_F(APeerThatIsBad, AgainAndAgain_DoesNotMakeAnotherProcessGrow) {
  const std::string socket = socketOfPartner();
  for (int round = 0; round < kFirstRounds; ++round) bother(socket);
  const long before = residentOfPartner();
  for (int round = kFirstRounds; round < kRounds; ++round) bother(socket);

  EXPECT_LT(residentOfPartner() - before, kMostGrowth);

  Stranger friendly(socket);
  friendly.say(encodeHead(HelloFrame{kWireVersion, id}));
  const std::string heard = friendly.hear();
  EXPECT_TRUE(std::holds_alternative<WelcomeFrame>(decodeFrame(heard)));
}

}  // namespace

#endif
