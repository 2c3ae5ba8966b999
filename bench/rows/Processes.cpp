#include <stdexcept>

#include "bench/floors/SocketEcho.h"
#include "bench/harness/Clock.h"
#include "bench/harness/Repeat.h"
#include "bench/ours/TwoHosts.h"
#include "bench/rows/Rows.h"

namespace zerva::bench {

namespace {

constexpr double kCallLimit = 1.3;
constexpr double kPayloadLimit = 0.8;
constexpr std::size_t kLargePayload = 64 * 1024;
constexpr std::size_t kNumber = 4;
constexpr int kBatch = 100;

double mebibytesASecond(double microsecondsEach) {
  return static_cast<double>(kLargePayload) / (1024 * 1024) / microsecondsEach * 1e6;
}

Figures callOurs(const std::string& mode, int times) {
  TwoHosts hosts(mode);
  const std::string data(kSmallPayload, 'x');
  return repeat(times, [&] {
    if (hosts.echo().echo(data).size() != kSmallPayload) throw std::runtime_error("a wrong answer");
  });
}

Figures callBare(int times) {
  SocketEcho socket({kSmallPayload, 1, kSmallPayload});
  return repeat(times, [&] { socket.call(); });
}

/** Calls with a large argument and a number as result. @returns MiB a second. */
Figures largeCallsOurs(const std::string& mode, int times) {
  TwoHosts hosts(mode);
  const std::string data(kLargePayload, 'x');
  return {mebibytesASecond(repeat(times, [&] {
                             if (hosts.echo().sizeOf(data) != kLargePayload)
                               throw std::runtime_error("a wrong answer");
                           }).front())};
}

Figures largeCallsBare(int times) {
  SocketEcho socket({kLargePayload, 1, kNumber});
  return {mebibytesASecond(repeat(times, [&] { socket.call(); }).front())};
}

/** Messages that nobody answers, and after some of them a call that comes behind them. */
Figures streamOurs(int times) {
  TwoHosts hosts("ST");
  const std::string data(kLargePayload, 'x');
  const Figures each = repeat(times, [&] {
    for (int i = 0; i < kBatch; ++i) {
      if (!hosts.send(data)) throw std::runtime_error("a message was not taken");
    }
    hosts.echo().sizeOf("");
  });
  return {mebibytesASecond(each.front() / kBatch)};
}

Figures streamBare(int times) {
  SocketEcho socket({kLargePayload, kBatch, kNumber});
  return {mebibytesASecond(repeat(times, [&] { socket.call(); }).front() / kBatch)};
}

}  // namespace

void callProcesses(Bench& bench) {
  const int times = bench.sized(10000, 100);
  const Series series = bench.run(1, {{"ours, ST", [times] { return callOurs("ST", times); }},
                                      {"ours, MT", [times] { return callOurs("MT", times); }},
                                      {"floor", [times] { return callBare(times); }}});
  bench.table("call-processes", "A call between processes, 64 bytes", "us")
      .add("one processor, mean", series.cells());
  bench.aimAtMost("call between processes, ST", ratios(series.figure(0), series.figure(2)),
                  kCallLimit);
  bench.aimAtMost("call between processes, MT", ratios(series.figure(1), series.figure(2)),
                  kCallLimit);
}

void payload(Bench& bench) {
  const int times = bench.sized(2000, 50);
  const int batches = bench.sized(20, 2);
  Table& table = bench.table("payload", "64 KiB between processes", "MiB a second");
  const Series calls = bench.run(1, {{"ours, ST", [times] { return largeCallsOurs("ST", times); }},
                                     {"floor", [times] { return largeCallsBare(times); }}});
  table.add("calls", calls.cells());
  bench.aimAtLeast("64 KiB calls between processes", ratios(calls.figure(0), calls.figure(1)),
                   kPayloadLimit);
  const Series stream = bench.run(1, {{"ours, ST", [batches] { return streamOurs(batches); }},
                                      {"floor", [batches] { return streamBare(batches); }}});
  table.add("messages without waiting", stream.cells());
  bench.aimAtLeast("64 KiB messages between processes", ratios(stream.figure(0), stream.figure(1)),
                   kPayloadLimit);
}

}  // namespace zerva::bench
