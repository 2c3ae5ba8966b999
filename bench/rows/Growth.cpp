#include "bench/ours/Libraries.h"
#include "bench/ours/Life.h"
#include "bench/rows/Rows.h"

namespace zerva::bench {

namespace {

constexpr double kSameOverhead = 1.15;
constexpr double kResidentLimit = 12;
constexpr int kFewLibraries = 4;
constexpr int kMost = 10000;
constexpr int kMostDistinct = 3000;

/** A figure of a life, and the table that shows how it grows. */
struct Grown {
  LifeFigure figure;
  const char* id;
  const char* title;
  const char* unit;
  bool hasFloor;
  /** Whether it is of a life in which services are looked up and called. */
  bool used;
};

constexpr Grown kGrown[] = {
    {kBringUp, "growth-up", "Bring-up of one service among N", "us", true, false},
    {kTearDown, "growth-down", "Tear-down of one service among N", "us", true, false},
    {kResident, "growth-memory", "Resident memory a service among N", "KiB", true, false},
    {kFirstFind, "growth-first", "A look-up that makes the proxy, among N", "us", false, true},
    {kFind, "growth-find", "A look-up of a recorded proxy among N", "ns", true, true},
    {kCall, "growth-call", "A call beside N idle services", "us", true, true}};

Series lives(const Bench& bench, const LifePlan& plan) {
  makeCopies(plan.libraries);
  return bench.run(1, {{"ours", [plan] { return ourLife(plan); }},
                       {"floor", [plan] { return bareLife(plan); }}});
}

/** Adds to each table what a number of services gave. */
void add(Bench& bench, bool used, const std::string& libraries, const Series& series,
         int services) {
  for (const Grown& grown : kGrown) {
    if (grown.used != used) continue;
    std::vector<Cell> cells{{"ours, " + libraries, series.figure(0, grown.figure)}};
    if (grown.hasFloor) cells.push_back({"floor, " + libraries, series.figure(1, grown.figure)});
    bench.table(grown.id, grown.title, grown.unit, "services")
        .add(std::to_string(services), cells, services);
  }
}

Rounds overhead(const Series& series) {
  return {median(differences(series.figure(0, kBringUp), series.figure(1, kBringUp)))};
}

/** From as many libraries as services, or all from one. */
void grow(Bench& bench, bool distinct) {
  const std::string libraries = distinct ? "distinct libraries" : "one library";
  std::vector<Rounds> overheads;
  const std::vector<int> counts =
      bench.smoke() ? std::vector<int>{3, 6} : std::vector<int>{10, 100, 1000, 3000, kMost};
  for (const int services : counts) {
    if (distinct && services > kMostDistinct) continue;
    const int files = distinct ? services : 1;
    const Series plain = lives(bench, {"service_instance: ST", services, files, false});
    add(bench, false, libraries, plain, services);
    add(bench, true, libraries, lives(bench, {"service_instance: ST", services, files, true}),
        services);
    if (services != 10 && services <= kMostDistinct) overheads.push_back(overhead(plain));
  }
  bench.aimAtMost("bring-up, overhead at 3,000 to that at 100, " + libraries,
                  ratios(overheads.back(), overheads.front()), kSameOverhead);
}

}  // namespace

void growth(Bench& bench) {
  grow(bench, true);
  grow(bench, false);
}

void capacity(Bench& bench) {
  const int many = bench.sized(kMost, 40);
  const int distinct = bench.sized(kMostDistinct, 20);
  const Series few = lives(bench, {"service_instance: ST", many, kFewLibraries, false});
  const Series all = lives(bench, {"service_instance: ST", distinct, distinct, false});
  Table& table = bench.table("memory", "Resident memory a service, without library pages", "KiB");
  table.add(std::to_string(many) + " services, few libraries", few.cells(kResident));
  table.add(std::to_string(distinct) + " services, distinct libraries", all.cells(kResident));
  // With 64 bits there is room for more, and pointers are longer.
  if constexpr (sizeof(void*) > 4) return;
  // They were all there, each with its thread, or there would be no figures.
  const auto live = [](const Series& series, int services) {
    return Rounds(series.figure(0).size(), services);
  };
  bench.aimAtLeast("live services from few libraries", live(few, many), kMost, "services");
  bench.aimAtLeast("live services from distinct libraries", live(all, distinct), kMostDistinct,
                   "services");
  bench.aimAtMost("memory a service, few libraries", few.figure(0, kResident), kResidentLimit,
                  "KiB");
  bench.aimAtMost("memory a service, distinct libraries", all.figure(0, kResident), kResidentLimit,
                  "KiB");
}

}  // namespace zerva::bench
