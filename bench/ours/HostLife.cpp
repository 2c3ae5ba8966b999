#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>

#include "bench/harness/Clock.h"
#include "bench/ours/Life.h"
#include "bench/ours/World.h"
#include "bench/plugin/Arrivals.h"
#include "host/Console.h"
#include "host/Host.h"
#include "host/Report.h"

namespace zerva::bench {

namespace {

constexpr std::chrono::seconds kLongestStop{60};

/** What a host tells is written, and goes nowhere. */
void throwAwayOutput() {
  const int nowhere = ::open("/dev/null", O_WRONLY);
  if (nowhere < 0 || ::dup2(nowhere, STDOUT_FILENO) < 0) {
    throw std::runtime_error("the output cannot be thrown away");
  }
  ::close(nowhere);
}

}  // namespace

Figures hostLife(const LifePlan& plan) {
  Figures figures(kCall + 1);
  const PlatformSettings settings;
  throwAwayOutput();
  Console console;
  Report report(console);
  Host host(report);
  const DirectiveFile file(registryLine() + linesOf(plan));

  const Stopwatch up;
  const StartResult start = host.start(file.path());
  figures[kBringUp] = up.microseconds() / plan.services;
  if (start.exception || start.fileNotOpened) throw std::runtime_error("the host did not start");

  const Stopwatch down;
  Arrivals::releaseAll();
  const StopResult stop = host.stop(kLongestStop);
  figures[kTearDown] = down.microseconds() / plan.services;
  if (!stop.complete) throw std::runtime_error("the host did not stop");
  expectUnmapped();
  return figures;
}

}  // namespace zerva::bench
