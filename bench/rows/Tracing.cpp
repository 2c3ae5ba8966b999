#include <string>

#include "bench/harness/Clock.h"
#include "bench/rows/Rows.h"
#include "runtime/libClientUtils/trace/TraceEvent.h"

namespace zerva::bench {

namespace {

constexpr double kEventLimit = 300;
/** As many as find room in a buffer; the writing is not what the thread waits for. */
constexpr int kBurst = 200;

/** What a point of the platform does. */
void pass(const std::string& channel) {
  const std::int64_t begin = Trace::begin();
  if (Trace::on()) {
    TraceEvent(TraceKind::LibraryOpened).since(begin).with(TraceKey::Library, channel).write();
  }
}

void call(const std::string& channel) {
  const std::int64_t begin = Trace::begin();
  if (begin != 0) Trace::called(channel, "ExampleWindSensorIfc", "mean", begin, {});
}

/** @returns the nanoseconds that each of many takes. */
Figures measure(bool on, void (*point)(const std::string&), int bursts) {
  if (on) Trace::start("/dev/null", "");
  Trace::workFor("/example/station-log", false);
  const std::string channel = "/example/wind";
  double nanoseconds = 0;
  for (int burst = 0; burst < bursts; ++burst) {
    const Stopwatch watch;
    for (int number = 0; number < kBurst; ++number) point(channel);
    nanoseconds += watch.nanoseconds();
    if (on) Trace::flush();
  }
  Trace::stop();
  return {nanoseconds / bursts / kBurst};
}

}  // namespace

void tracing(Bench& bench) {
  const int bursts = bench.sized(2000, 2);
  const Series series = bench.run(1, {{"event", [bursts] { return measure(true, &pass, bursts); }},
                                      {"call", [bursts] { return measure(true, &call, bursts); }},
                                      {"off", [bursts] { return measure(false, &pass, bursts); }}});
  bench.table("tracing", "What a point of the trace costs", "ns").add("one", series.cells());
  bench.aimAtMost("trace, an event", series.figure(0), kEventLimit, "ns");
  bench.aimAtMost("trace, a call", series.figure(1), kEventLimit, "ns");
}

}  // namespace zerva::bench
