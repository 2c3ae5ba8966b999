// Starts and stops the services of the demo again and again in one process, and looks whether
// anything is left behind.
//
// Usage: zerva_soak [CYCLES], at least 200; the first 100 are for caches to fill. What the process
// holds is told after these, and after every thousand.

#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "framework/CommsChannel.h"
#include "framework/CommsChannelDataContainerMessage.h"
#include "host/Console.h"
#include "host/Host.h"
#include "host/HostBus.h"
#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/LibraryDirectories.h"
#include "runtime/libLoggingHandler/LogSettings.h"
#include "tests/soak/Footprint.h"
#include "tests/support/WaitUntil.h"

namespace {

using zerva::Footprint;

constexpr int warmUpCycles = 100;

// Each cycle leaves an object for each of its two started processes, on purpose: nobody owns them.
// With their entries in the platform's list, the texts in both and what the allocator adds that is
// 320 bytes in 32 bit, 520 in 64; a little more is other lengths of texts.
constexpr std::size_t bytesACycle = sizeof(void*) == 4 ? 340 : 550;

// Caches that fill when threads happen to meet. What lost a hundred bytes a cycle would be beyond
// this after the short run.
constexpr std::size_t heapNoise = std::size_t{12} * 1024;

// What is freed does not go back to the system at once and lies scattered, and touched parts of the
// stacks that are kept for the next threads stay: some pages come and go, whatever the number of
// cycles. What grew by a page a cycle would be beyond this after the short run.
constexpr std::size_t residentNoise = std::size_t{512} * 1024;

// The allocator gets some large pieces, and the thread library some stacks, with mappings of their
// own, depending on how threads happen to meet.
constexpr std::size_t mappingNoise = 4;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// There memory is the sanitizer's: it keeps freed pieces back for a long time.
constexpr bool memoryIsOurs = false;
#else
constexpr bool memoryIsOurs = true;
#endif

bool ask(CommsChannel& channel, const std::string& whom, long requestId) {
  CommsChannelDataContainerMessage message;
  message.setChannel(whom);
  message.setData("soak");
  message.setRequestId(requestId);
  channel.send(message);
  return channel.receiveReply(message, requestId);
}

/**
 * One life of the demo; the question has its lazy service made. The second process meets whatever
 * there is of the first one at that moment.
 */
bool liveOnce(zerva::Report& report, const std::string& file) {
  zerva::Host host(report);
  const zerva::StartResult start = host.start(file);
  bool good = !start.exception && !start.fileNotOpened;
  {
    CommsChannel channel("/test/soak", nullptr);
    good = ask(channel, "/example/forecast", 1) && good;
  }
  good = host.stop(std::chrono::seconds(60)).complete && good;
  const zerva::Summary summary = host.summary();
  return good && summary.services.up == 6 && summary.services.down == 6 &&
         summary.processesUp == 2 && summary.processesDown == 2 && summary.failures == 0;
}

/**
 * A thread that was waited for is gone from the list of threads a moment later only, and so is the
 * connection to a process that has ended.
 */
Footprint settled(const Footprint& before) {
  zerva::waitUntil([&] {
    const Footprint now = zerva::measureFootprint();
    return now.threads <= before.threads && now.descriptors <= before.descriptors;
  });
  return zerva::measureFootprint();
}

bool within(const char* what, std::size_t before, std::size_t after, std::size_t allowed) {
  if (after <= before + allowed) return true;
  std::fprintf(stderr, "%s grew from %zu to %zu, %zu more than allowed\n", what, before, after,
               after - before - allowed);
  return false;
}

bool compare(const Footprint& before, const Footprint& after, std::size_t cycles) {
  bool good = within("descriptors", before.descriptors, after.descriptors, 0);
  good = within("threads", before.threads, after.threads, 0) && good;
  if (!memoryIsOurs) return good;
  const std::size_t left = cycles * bytesACycle;
  good = within("allocated bytes", before.heap, after.heap, left + heapNoise) && good;
  good = within("resident bytes", before.resident, after.resident, left + residentNoise) && good;
  return within("mappings", before.mappings, after.mappings, mappingNoise) && good;
}

void setUp() {
  // One arena: how many there are depends on how threads happen to meet.
  mallopt(M_ARENA_MAX, 1);
  const std::filesystem::path build = ZERVA_BUILD_DIRECTORY;
  const std::string path = (build / "bin").string() + ":" + std::getenv("PATH");
  setenv("PATH", path.c_str(), 1);
  // The second process's file is named as seen from here; it gets a bus of this run's own.
  std::filesystem::current_path(ZERVA_SOURCE_DIRECTORY);
  unsetenv("ZERVA_BUS");
  zerva::LibraryDirectories::set({build / "lib"});
  zerva::LogSettings::logToStandardError(false);
  // What a host tells goes the way it always goes, and nowhere.
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  dup2(nowhere, STDOUT_FILENO);
  close(nowhere);
}

void tell(int cycle, const Footprint& footprint, std::size_t busEntries) {
  std::fprintf(stderr, "after cycle %d: %s, %zu bus entries\n", cycle, describe(footprint).c_str(),
               busEntries);
}

bool soak(int cycles) {
  setUp();
  const zerva::HostBus bus("");
  zerva::Console console;
  zerva::Report report(console);
  const Footprint atFirst = zerva::measureFootprint();
  Footprint before = atFirst;
  const std::string busDirectory = std::getenv("ZERVA_BUS");
  const std::size_t busEntries = zerva::entriesOf(busDirectory);
  for (int cycle = 1; cycle <= cycles; ++cycle) {
    if (!liveOnce(report, "examples/demo.directives")) {
      std::fprintf(stderr, "cycle %d did not come up and go down as it should\n", cycle);
      return false;
    }
    if (cycle == warmUpCycles) before = settled(atFirst);
    if (cycle == warmUpCycles || cycle % 1000 == 0) {
      tell(cycle, settled(before), zerva::entriesOf(busDirectory));
    }
  }
  const Footprint after = settled(before);
  const std::size_t busEntriesAfter = zerva::entriesOf(busDirectory);
  tell(cycles, after, busEntriesAfter);
  return compare(before, after, static_cast<std::size_t>(cycles - warmUpCycles)) &&
         within("bus entries", busEntries, busEntriesAfter, 0);
}

}  // namespace

int main(int argc, char** argv) {
  const int cycles = argc > 1 ? std::atoi(argv[1]) : 300;
  if (cycles < 2 * warmUpCycles) {
    std::fprintf(stderr, "usage: zerva_soak [CYCLES], at least %d\n", 2 * warmUpCycles);
    return 2;
  }
  try {
    return soak(cycles) ? EXIT_SUCCESS : EXIT_FAILURE;
  } catch (...) {
    std::fprintf(stderr, "%s\n", zerva::currentExceptionText().c_str());
    return EXIT_FAILURE;
  }
}
