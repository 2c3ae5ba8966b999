#include <stdexcept>

#include "bench/harness/Clock.h"
#include "bench/ours/Footprint.h"
#include "bench/ours/Libraries.h"
#include "bench/ours/Life.h"
#include "bench/ours/Names.h"
#include "bench/ours/World.h"
#include "bench/plugin/Arrivals.h"

namespace zerva::bench {

namespace {

constexpr int kCalls = 5000;
constexpr std::size_t kPayload = 64;

/** Looks everything up twice, calls one, and notes how long that takes. */
void use(World& world, const LifePlan& plan, Figures& figures) {
  const double count = plan.services;
  const Names names(plan.services);
  const Stopwatch first;
  for (const std::string& name : names.all()) world.find(name);
  figures[kFirstFind] = first.microseconds() / count;

  figures[kFind] = names.nanosecondsEach(
      [&](const std::string& name) { return world.context().findService(name) != nullptr; });

  Echo& echo = world.find(interfaceName(plan.services / 2));
  const std::string data(kPayload, 'x');
  echo.echo(data);
  const Stopwatch calls;
  for (int i = 0; i < kCalls; ++i) echo.echo(data);
  figures[kCall] = calls.microseconds() / kCalls;
}

/** Every service has the thread that its kind has. */
void expectThreads(const LifePlan& plan) {
  if (plan.keyword.find(" MT") != std::string::npos) return;
  if (threads() < static_cast<std::size_t>(plan.services)) {
    throw std::runtime_error("there are " + std::to_string(threads()) + " threads only");
  }
}

}  // namespace

std::string linesOf(const LifePlan& plan) {
  std::string lines;
  for (int i = 0; i < plan.services; ++i) {
    lines += serviceLine(plan.keyword, copyName(i % plan.libraries), i);
  }
  return lines;
}

Figures ourLife(const LifePlan& plan) {
  Figures figures(kCall + 1);
  World world;
  if (plan.used) world.process(accessLines(plan.services));
  const DirectiveFile file(linesOf(plan));
  const std::size_t before = residentBytes();

  const Stopwatch up;
  world.process(file);
  figures[kBringUp] = up.microseconds() / plan.services;
  expectThreads(plan);
  figures[kResident] =
      static_cast<double>(residentBytes() - before) / 1024 / static_cast<double>(plan.services);

  if (plan.used) use(world, plan, figures);

  const Stopwatch down;
  Arrivals::releaseAll();
  world.end();
  figures[kTearDown] = down.microseconds() / plan.services;
  expectUnmapped();
  return figures;
}

}  // namespace zerva::bench
