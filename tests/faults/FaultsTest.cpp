#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "tests/faults/FaultyLife.h"

namespace zerva {
namespace {

using testing::HasSubstr;

constexpr unsigned kSeed = 20240607;

// As many as can be looked at while somebody waits; all of them when ZERVA_FAULTS is "all".
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t kSample = 12;
#else
constexpr std::size_t kSample = 40;
#endif

bool allWanted() {
  const char* const wanted = std::getenv("ZERVA_FAULTS");
  return wanted != nullptr && std::string(wanted) == "all";
}

/** A proxy whose making was ended by an exception leaves the making of proxies locked. */
void expectNothingButTheKnownLimit(FaultyLife& life) {
  if (!life.hung()) {
    EXPECT_EQ(life.complaint(), "");
  } else if (!life.waits().empty()) {
    EXPECT_THAT(life.waits(), HasSubstr("initProxyAndAddToRepository"));
  } else {
    EXPECT_THAT(life.errors(), HasSubstr("still under way, so nothing was deleted"));
  }
}

/** @returns whether the fault was reached. */
bool expectARightEnd(FaultyLife& life) {
  if (life.inMakingAProxy()) {
    expectNothingButTheKnownLimit(life);
  } else {
    EXPECT_EQ(life.complaint(), "");
  }
  return life.reached();
}

/** Runs lives with these faults, some at a time. @returns how many reached theirs. */
std::size_t runLives(const std::string& kind, const std::vector<long>& faults) {
  // A life is nearly all waiting; beside other tests two of them are enough.
  const std::size_t atATime = allWanted() ? 16 : 2;
  std::deque<std::unique_ptr<FaultyLife>> running;
  std::size_t reached = 0;
  const auto endFirst = [&] {
    running.front()->hung();  // waits for its end
    reached += expectARightEnd(*running.front()) ? 1 : 0;
    running.pop_front();
  };
  for (const long fault : faults) {
    if (running.size() == atATime) endFirst();
    running.push_back(std::make_unique<FaultyLife>(kind, fault));
  }
  while (!running.empty()) endFirst();
  return reached;
}

/** Runs lives until they do not reach their fault any more. @returns how many did. */
std::size_t runAllLives(const std::string& kind) {
  std::size_t all = 0;
  for (long next = 1;; next += 2) {
    const std::size_t reached = runLives(kind, {next, next + 1});
    all += reached;
    if (reached == 0 || testing::Test::HasFailure()) return all;
  }
}

/** For who writes down what was tried. */
void tellOf(const std::string& kind, std::size_t reached) {
  std::printf("faults: %s: %zu, each in a life of its own\n", kind.c_str(), reached);
  testing::Test::RecordProperty("faults", static_cast<int>(reached));
}

std::string nameOfKind(const testing::TestParamInfo<const char*>& param) { return param.param; }

TEST(ALife, WithoutAFault_DoesAllAndGoesDownInOrder) {
  FaultyLife sut("none", 0);
  EXPECT_EQ(sut.complaint(), "");
  for (const char* const what : {"timer", "here", "lazy", "again", "there", "and back"}) {
    EXPECT_THAT(sut.output(), HasSubstr(std::string("busy: ") + what + ": done")) << sut.errors();
  }
  EXPECT_THAT(sut.output(), HasSubstr("zerva: 4 services and 1 started process came up and went"));
}

/** Whatever call of a kind fails: no crash, no hang, nothing left, and somebody is told. */
class ALifeWithAFault : public testing::TestWithParam<const char*> {};

INSTANTIATE_TEST_SUITE_P(Of, ALifeWithAFault,
                         testing::Values("dlopen", "thread", "socket", "bind", "listen",
                                         "connect_away", "accept", "send_away", "receive_away",
                                         "openbusfile_away", "socket_away", "thread_away",
                                         "descriptor_away", "dlopen_away", "busfilefull",
                                         "busfilequota", "busfiledenied", "send", "sendpart",
                                         "sendfull", "receive", "spawn", "openfile", "openbusfile",
                                         "descriptor"),
                         nameOfKind);

TEST_P(ALifeWithAFault, WhicheverCallFails_GoesDownInOrder) {
  const std::size_t reached = runAllLives(GetParam());
  EXPECT_GT(reached, 0U);
  tellOf(GetParam(), reached);
}

TEST(ALife, KilledAtAnyStep_HarmsNeitherTheOtherHostNorTheNextLife) {
  // What is to be left alone is outside of the process: under the sanitizers some steps will do.
  constexpr long kStride = kSample == 40 ? 1 : 15;
  std::size_t killed = 0;
  for (long next = 1;; next += 2 * kStride) {
    const std::size_t reached = runLives("death_away", {next, next + kStride});
    killed += reached;
    if (reached < 2 || testing::Test::HasFailure()) break;
  }
  EXPECT_GT(killed, 2U);
  tellOf("death_away", killed);
}

TEST(ALife, WhoseDirectiveFileCannotBeRead_IsRefused) {
  FaultyLife sut("readfile", 1);
  EXPECT_EQ(sut.complaint(), "");
  EXPECT_THAT(sut.errors(), HasSubstr("it can be opened but not read"));
}

class ALifeWithoutMemory : public testing::TestWithParam<const char*> {};

INSTANTIATE_TEST_SUITE_P(Of, ALifeWithoutMemory, testing::Values("new", "new_away"), nameOfKind);

TEST_P(ALifeWithoutMemory, WhicheverAllocationFails_GoesDownInOrder) {
  FaultyLife unharmed(GetParam(), 0);
  ASSERT_EQ(unharmed.complaint(), "");
  std::vector<long> faults(static_cast<std::size_t>(unharmed.calls()));
  std::iota(faults.begin(), faults.end(), 1);
  if (!allWanted()) {
    std::mt19937 random(kSeed);
    std::shuffle(faults.begin(), faults.end(), random);
    faults.resize(std::min(faults.size(), kSample));
  }
  const std::size_t reached = runLives(GetParam(), faults);
  EXPECT_GT(reached, faults.size() / 2);
  tellOf(GetParam(), reached);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

INSTANTIATE_TEST_SUITE_P(OfTheLoader, ALifeWithAFault, testing::Values("dlsym"), nameOfKind);

#if !defined(ZERVA_COVERAGE)

// What counts the lines takes memory when a library is closed, and does not look whether it got
// any.
INSTANTIATE_TEST_SUITE_P(OfTheCLibrary, ALifeWithoutMemory, testing::Values("malloc"), nameOfKind);

#endif

// Known limit. The end of the directive file is the only way out of reading it, and after an error
// it does not come.
TEST(AnError, InReadingItsDirectiveFile_IsRefusedOrReadsOnForGood) {
  int refused = 0;
  int hung = 0;
  for (long read = 1;; ++read) {
    FaultyLife sut("readfile", read);
    if (sut.hung()) {
      ++hung;
      EXPECT_THAT(sut.waits(), HasSubstr("Directives"));
    } else {
      EXPECT_EQ(sut.complaint(), "");
      refused += sut.reached() ? 1 : 0;
    }
    if (!sut.reached()) break;
  }
  EXPECT_GT(refused, 0);
  EXPECT_GT(hung, 0);
}

// Known limit. The making of proxies is locked while one is made, and what leaves it by an
// exception leaves it locked: whoever wants another proxy waits for good.
TEST(AnExceptionInTheMakingOfAProxy, LeavesTheMakingOfProxiesLockedAndNothingElseWrong) {
  FaultyLife sut("proxy", 1);
  EXPECT_TRUE(sut.hung());
  EXPECT_TRUE(sut.reached());
  EXPECT_THAT(sut.output(), HasSubstr("busy: here: std::bad_alloc"));
  expectNothingButTheKnownLimit(sut);
}

#endif

}  // namespace
}  // namespace zerva
