#include <string>

#include "bench/harness/Clock.h"
#include "bench/rows/Rows.h"
#include "runtime/libClientUtils/trace/SeenCalls.h"
#include "runtime/libClientUtils/trace/TraceEvent.h"

namespace zerva::bench {

namespace {

constexpr double kEventLimit = 300;
/** What nobody notices: a hundredth of the least call. */
constexpr double kOffLimit = 10;
/** As many as find room in a buffer; the writing is not what the thread waits for. */
constexpr int kBurst = 200;

/** What a point of the platform does. */
void pass(const std::string& channel) {
  const std::int64_t begin = Trace::begin();
  if (Trace::on()) {
    TraceEvent(TraceKind::LibraryOpened).since(begin).with(TraceKey::Library, channel).write();
  }
}

/** What a proxy does about a call. */
void call(const std::string& channel) {
  const std::int64_t begin = Trace::beginOfCall();
  if (begin != 0) Trace::called(channel, "ExampleWindSensorIfc", "mean", begin, {});
}

/** Whom calls and events are told to. */
enum class Told { Nobody, Memory, File };

void begin(Told told) {
  if (told == Told::File) Trace::start("/dev/null", "");
  if (told == Told::Memory) SeenCalls::start();
}

/** @returns the nanoseconds that each of many takes. */
Figures measure(Told told, void (*point)(const std::string&), int bursts) {
  begin(told);
  Trace::workFor("/example/station-log", false);
  const std::string channel = "/example/wind";
  double nanoseconds = 0;
  for (int burst = 0; burst < bursts; ++burst) {
    const Stopwatch watch;
    for (int number = 0; number < kBurst; ++number) point(channel);
    nanoseconds += watch.nanoseconds();
    if (told == Told::File) Trace::flush();
  }
  Trace::stop();
  SeenCalls::stop();
  return {nanoseconds / bursts / kBurst};
}

}  // namespace

void tracing(Bench& bench) {
  const int bursts = bench.sized(2000, 2);
  const auto side = [bursts](Told told, void (*point)(const std::string&)) {
    return [=] { return measure(told, point, bursts); };
  };
  const Series series = bench.run(1, {{"event", side(Told::File, &pass)},
                                      {"call", side(Told::File, &call)},
                                      {"call, counted in memory", side(Told::Memory, &call)},
                                      {"event, off", side(Told::Nobody, &pass)},
                                      {"call, off", side(Told::Nobody, &call)}});
  bench.table("tracing", "What a point of the trace costs", "ns").add("one", series.cells());
  bench.aimAtMost("trace, an event", series.figure(0), kEventLimit, "ns");
  bench.aimAtMost("trace, a call", series.figure(1), kEventLimit, "ns");
  bench.aimAtMost("calls counted for zerva status", series.figure(2), kEventLimit, "ns");
  bench.aimAtMost("trace off, an event", series.figure(3), kOffLimit, "ns");
  bench.aimAtMost("trace off, a call", series.figure(4), kOffLimit, "ns");
}

}  // namespace zerva::bench
