#include "bench/ours/Libraries.h"
#include "bench/ours/Life.h"
#include "bench/rows/Rows.h"

namespace zerva::bench {

namespace {

constexpr double kBringUpLimit = 1.15;
constexpr double kTearDownLimit = 1.2;
constexpr double kLazyLimit = 1.3;
constexpr double kLegacyLimit = 1.1;

/** The same services by us, by hand, and by the program. */
Series lives(const Bench& bench, const LifePlan& plan) {
  makeCopies(plan.libraries);
  return bench.run(1, {{"ours", [plan] { return ourLife(plan); }},
                       {"floor", [plan] { return bareLife(plan); }},
                       {"ours, by zerva run", [plan] { return hostLife(plan); }}});
}

Table& bringUpTable(Bench& bench) {
  return bench.table("bring-up", "Bringing one service up", "us");
}

Table& tearDownTable(Bench& bench) {
  return bench.table("tear-down", "Taking one service down", "us");
}

Rounds ratio(const Series& series, LifeFigure figure) {
  return ratios(series.figure(0, figure), series.figure(1, figure));
}

void add(Bench& bench, const std::string& row, const Series& series) {
  bringUpTable(bench).add(row, series.cells(kBringUp));
  tearDownTable(bench).add(row, series.cells(kTearDown));
}

}  // namespace

void bringUp(Bench& bench) {
  const int count = bench.sized(1000, 20);
  const Series series = lives(bench, {"service_instance: ST", count, count});
  add(bench, "immediate, distinct libraries", series);
  bench.aimAtMost("bring-up of an immediate service", ratio(series, kBringUp), kBringUpLimit);
  bench.aimAtMost("tear-down of an immediate service", ratio(series, kTearDown), kTearDownLimit);

  add(bench, "immediate, one library", lives(bench, {"service_instance: ST", count, 1}));
}

void lazyDeclaration(Bench& bench) {
  const int count = bench.sized(1000, 20);
  const Series series = lives(bench, {"service_info: ST", count, count});
  add(bench, "lazy, not made", series);
  bench.aimAtMost("declaration of a lazy service", ratio(series, kBringUp), kLazyLimit);
}

void legacyService(Bench& bench) {
  const int count = bench.sized(1000, 20);
  const Series series = lives(bench, {"service_legacy:", count, count});
  add(bench, "legacy, distinct libraries", series);
  bench.aimAtMost("bring-up of a legacy service", ratio(series, kBringUp), kLegacyLimit);
}

}  // namespace zerva::bench
