#include <atomic>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <thread>

#include "framework/CallException.h"
#include "tests/soak/Footprint.h"
#include "tests/support/WaitUntil.h"
#include "tests/system/RelayHosts.h"

namespace zerva {
namespace {

std::chrono::seconds duration() {
  const char* const wanted = std::getenv("ZERVA_SOAK_SECONDS");
  return std::chrono::seconds(wanted != nullptr ? std::atoi(wanted) : 4);
}

// Under a sanitizer memory is the sanitizer's: it keeps freed pieces back.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool memoryIsOurs = false;
#else
constexpr bool memoryIsOurs = true;
#endif

// Touched parts of stacks and scattered free pieces come and go, however long the run is.
constexpr std::size_t residentNoise = std::size_t{1024} * 1024;
// The pool keeps the threads that it once needed, each with a stack of its own: how many that are
// depends on how many calls happen to meet, of which no more than this many are made at once.
constexpr std::size_t threadNoise = 8;
// The connection to the third and its list of names, when it was just away at the beginning.
constexpr std::size_t descriptorNoise = 2;
constexpr std::size_t mappingNoise = 8 + 2 * threadNoise;

class LongCalls : public RelayHosts {
 protected:
  /** Calls a way on a thread of its own until it is told to end. @param failed counts failures. */
  std::thread calling(std::vector<std::string> way, std::atomic<unsigned long>& failed) {
    return std::thread([this, &failed, way = std::move(way)] {
      RelayCaller first(way[0]);
      const std::vector<std::string> rest(way.begin() + 1, way.end());
      while (!over) {
        try {
          first.pass(rest);
          ++calls;
        } catch (const CallException&) {
          ++failed;
          std::this_thread::yield();
        }
      }
    });
  }

  /** One after the other a third host comes and goes, in order and killed. */
  void comeAndGo(std::chrono::steady_clock::time_point end) {
    for (; std::chrono::steady_clock::now() < end; ++lives) {
      if (lives % 2 == 0) {
        this->end("Third");
      } else {
        kill("Third");
      }
      ASSERT_NO_FATAL_FAILURE(start("Third"));
    }
  }

  void callFor(std::chrono::seconds time) {
    over = false;
    std::vector<std::thread> callers;
    callers.push_back(calling({"First", "Second", "First"}, lost));
    callers.push_back(calling({"Second", "First", "Second"}, lost));
    callers.push_back(calling({"Second", "Third", "First"}, failures));
    callers.push_back(calling({"First", "Third"}, failures));
    comeAndGo(std::chrono::steady_clock::now() + time);
    over = true;
    for (std::thread& caller : callers) caller.join();
  }

  /** What a host holds once the threads that it needs no longer have ended. */
  Footprint settled(const std::string& name, std::size_t threads) {
    waitUntil([&] { return measureFootprintOf(host(name).id()).threads <= threads; });
    return measureFootprintOf(host(name).id());
  }

  std::atomic<bool> over{false};
  std::atomic<unsigned long> calls{0};
  std::atomic<unsigned long> failures{0};  // of calls through the third, when it is not there
  std::atomic<unsigned long> lost{0};      // of calls between the two that stay
  int lives = 0;
};

TEST_F(LongCalls, AcrossThreeProcessesOfWhichOneComesAndGoes_LeaveNothingBehind) {
  ASSERT_NO_FATAL_FAILURE(startAll());
  callFor(std::chrono::seconds(2));
  const Footprint firstBefore = measureFootprintOf(host("First").id());
  const Footprint secondBefore = measureFootprintOf(host("Second").id());
  const std::size_t busEntriesBefore = entriesOf(busDirectory());

  callFor(duration());

  std::cout << calls << " calls, " << failures << " failed, " << lives << " lives of the third\n";
  for (const auto& [name, before] : {std::pair<std::string, Footprint>("First", firstBefore),
                                     std::pair<std::string, Footprint>("Second", secondBefore)}) {
    const Footprint after = settled(name, before.threads);
    std::cout << name << " before: " << describe(before) << "\n"
              << name << " after:  " << describe(after) << "\n";
    EXPECT_LE(after.descriptors, before.descriptors + descriptorNoise);
    EXPECT_LE(after.threads, before.threads + threadNoise);
    if (memoryIsOurs) {
      EXPECT_LE(after.resident, before.resident + residentNoise);
      EXPECT_LE(after.mappings, before.mappings + mappingNoise);
    }
  }
  EXPECT_EQ(entriesOf(busDirectory()), busEntriesBefore);
  EXPECT_GT(calls, 0U);
  EXPECT_EQ(lost, 0U);
  EXPECT_GT(lives, 0);
  endAll();
}

}  // namespace
}  // namespace zerva
