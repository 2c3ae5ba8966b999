#include <stdexcept>
#include <thread>

#include "bench/floors/FutexPing.h"
#include "bench/harness/Clock.h"
#include "bench/harness/Repeat.h"
#include "bench/ours/EchoWorld.h"
#include "bench/rows/Rows.h"
#include "framework/CommsChannelDataContainerMessage.h"

namespace zerva::bench {

namespace {

constexpr double kOneCoreLimit = 1.6;
constexpr double kModesLimit = 1.15;
constexpr double kTwoCoresLimit = 2;
constexpr double kIdleLimit = 1;
constexpr std::chrono::milliseconds kSettling{200};

enum CallFigure : std::size_t { kMean, kMedian };

/** Calls through a proxy and back. */
Figures callOurs(const std::string& mode, int times) {
  EchoWorld one(mode);
  Echo& echo = one.echo();
  const std::string data(kSmallPayload, 'x');
  Figures figures = repeat(times, [&] {
    if (echo.echo(data).size() != kSmallPayload) throw std::runtime_error("a wrong answer");
  });
  one.world.end();
  return figures;
}

/** A request that is no call, and its reply: what proxy, adapter and invoker cost is not in it. */
Figures askOurs(const std::string& mode, int times) {
  EchoWorld one(mode);
  const std::string data(kSmallPayload, 'x');
  const std::string to = channelName(0);
  long id = 0;
  Figures figures = repeat(times, [&] {
    CommsChannelDataContainerMessage message;
    message.setChannel(to);
    message.setData(data);
    message.setRequestId(++id);
    one.world.channel().send(message);
    if (!one.world.channel().receiveReply(message, id)) {
      throw std::runtime_error(message.getError());
    }
  });
  one.world.end();
  return figures;
}

Figures pingBare(bool spinning, int times) {
  FutexPing ping(spinning);
  FutexPing::Payload payload{};
  return repeat(times, [&] { payload = ping.call(payload); });
}

/** @returns the milliseconds of a processor that a second of idleness takes after some calls. */
Figures idleOurs(const std::string& mode, int milliseconds) {
  EchoWorld one(mode);
  Echo& echo = one.echo();
  const std::string data(kSmallPayload, 'x');
  for (int i = 0; i < 1000; ++i) echo.echo(data);
  std::this_thread::sleep_for(kSettling);
  const double before = processorMicroseconds();
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  const double used = (processorMicroseconds() - before) / milliseconds;
  one.world.end();
  return {used};
}

}  // namespace

void callOneCore(Bench& bench) {
  const int times = bench.sized(20000, 200);
  const Series series =
      bench.run(1, {{"ours, MT", [times] { return callOurs("MT", times); }},
                    {"ours, ST", [times] { return callOurs("ST", times); }},
                    {"floor", [times] { return pingBare(false, times); }},
                    {"ours, message, MT", [times] { return askOurs("MT", times); }},
                    {"ours, message, ST", [times] { return askOurs("ST", times); }}});
  bench.table("call", "A call within a process, 64 bytes", "us")
      .add("one processor, mean", series.cells(kMean));
  bench.aimAtMost("in-process call, MT, one core", ratios(series.figure(0), series.figure(2)),
                  kOneCoreLimit);
  bench.aimAtMost("in-process call, ST, one core", ratios(series.figure(1), series.figure(2)),
                  kOneCoreLimit);
  bench.aimAtMost("in-process call, MT to ST", ratios(series.figure(0), series.figure(1)),
                  kModesLimit);
}

void callTwoCores(Bench& bench) {
  const int times = bench.sized(10000, 200);
  const Series series =
      bench.run(2, {{"ours, MT", [times] { return callOurs("MT", times); }},
                    {"ours, ST", [times] { return callOurs("ST", times); }},
                    {"floor", [times] { return pingBare(false, times); }},
                    {"floor that spins", [times] { return pingBare(true, times); }}});
  bench.table("call", "A call within a process, 64 bytes", "us")
      .add("two processors, median", series.cells(kMedian));
  bench.aimAtMost("in-process call, MT, two cores, median", series.figure(0, kMedian),
                  kTwoCoresLimit, "us");
  bench.aimAtMost("in-process call, ST, two cores, median", series.figure(1, kMedian),
                  kTwoCoresLimit, "us");

  const int idle = bench.sized(500, 20);
  const Series idling = bench.run(2, {{"ours, MT", [idle] { return idleOurs("MT", idle); }},
                                      {"ours, ST", [idle] { return idleOurs("ST", idle); }}});
  bench.table("idle", "Processor time when idle after calls", "ms a second")
      .add("two processors", idling.cells());
  bench.aimAtMost("processor when idle, MT", idling.figure(0), kIdleLimit, "ms a second");
  bench.aimAtMost("processor when idle, ST", idling.figure(1), kIdleLimit, "ms a second");
}

}  // namespace zerva::bench
