#include "bench/ours/Libraries.h"
#include "bench/ours/Life.h"
#include "bench/rows/Rows.h"

namespace zerva::bench {

namespace {

constexpr double kSameOverhead = 1.15;
constexpr double kResidentLimit = 12;
constexpr int kFewLibraries = 4;
constexpr int kMany = 10000;

/** A figure of a life, and the table that shows how it grows. */
struct Grown {
  LifeFigure figure;
  const char* id;
  const char* title;
  const char* unit;
  bool hasFloor;
};

constexpr Grown kGrown[] = {
    {kBringUp, "growth-up", "Bring-up of one service among N", "us", true},
    {kTearDown, "growth-down", "Tear-down of one service among N", "us", true},
    {kFirstFind, "growth-first", "A look-up that makes the proxy, among N", "us", false},
    {kFind, "growth-find", "A look-up of a recorded proxy among N", "ns", true},
    {kCall, "growth-call", "A call beside N idle services", "us", true},
    {kResident, "growth-memory", "Resident memory a service among N", "KiB", true}};

Series lives(const Bench& bench, int services, int libraries) {
  makeCopies(libraries);
  const LifePlan plan{"service_instance: ST", services, libraries, true};
  return bench.run(1, {{"ours", [plan] { return ourLife(plan); }},
                       {"floor", [plan] { return bareLife(plan); }}});
}

/** Adds to each table what a number of services gave. */
void add(Bench& bench, const Series& distinct, const Series& one, int services) {
  for (const Grown& grown : kGrown) {
    std::vector<Cell> cells;
    const auto addSide = [&](const Series& series, std::size_t side, const char* name) {
      const Rounds rounds = series.figure(side, grown.figure);
      cells.push_back({name, rounds});
    };
    if (services < kMany) {
      addSide(distinct, 0, "ours, distinct libraries");
      if (grown.hasFloor) addSide(distinct, 1, "floor, distinct libraries");
    }
    addSide(one, 0, "ours, one library");
    if (grown.hasFloor) addSide(one, 1, "floor, one library");
    bench.table(grown.id, grown.title, grown.unit, "services")
        .add(std::to_string(services), std::move(cells), services);
  }
}

}  // namespace

void growth(Bench& bench) {
  const std::vector<int> counts =
      bench.smoke() ? std::vector<int>{3, 6} : std::vector<int>{10, 100, 1000, 3000, kMany};
  std::vector<Rounds> overheads;
  for (const int services : counts) {
    const Series one = lives(bench, services, 1);
    const Series distinct = services < kMany ? lives(bench, services, services) : one;
    add(bench, distinct, one, services);
    if (services < kMany && services != 10) {
      overheads.push_back(differences(distinct.figure(0, kBringUp), distinct.figure(1, kBringUp)));
    }
  }
  bench.aimAtMost("bring-up, overhead at 3,000 to that at 100",
                  ratios(overheads.back(), overheads.front()), kSameOverhead);
}

void capacity(Bench& bench) {
  const auto measure = [&](int services, int libraries) {
    makeCopies(libraries);
    const LifePlan plan{"service_instance: ST", services, libraries, false};
    return bench.run(1, {{"ours", [plan] { return ourLife(plan); }},
                         {"floor", [plan] { return bareLife(plan); }}});
  };
  const int many = bench.sized(kMany, 40);
  const int distinct = bench.sized(3000, 20);
  const Series few = measure(many, kFewLibraries);
  const Series all = measure(distinct, distinct);
  Table& table = bench.table("memory", "Resident memory a service, without library pages", "KiB");
  table.add(std::to_string(many) + " services, few libraries", few.cells(kResident));
  table.add(std::to_string(distinct) + " services, distinct libraries", all.cells(kResident));
  // They were all there, each with its thread, or there would be no figures.
  const auto live = [](const Series& series, int services) {
    return Rounds(series.figure(0).size(), services);
  };
  bench.aimAtLeast("live services from few libraries", live(few, many), kMany, "services");
  bench.aimAtLeast("live services from distinct libraries", live(all, distinct), 3000, "services");
  bench.aimAtMost("memory a service, few libraries", few.figure(0, kResident), kResidentLimit,
                  "KiB");
  bench.aimAtMost("memory a service, distinct libraries", all.figure(0, kResident), kResidentLimit,
                  "KiB");
}

}  // namespace zerva::bench
