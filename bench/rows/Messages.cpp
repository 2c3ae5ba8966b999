#include <atomic>

#include "bench/floors/Receiver.h"
#include "bench/harness/Clock.h"
#include "bench/ours/EchoWorld.h"
#include "bench/plugin/Arrivals.h"
#include "bench/rows/Rows.h"

namespace zerva::bench {

namespace {

constexpr double kPipelinedLimit = 1.0;
constexpr double kNoneLimit = 1.02;
constexpr double kCountingLimit = 100;

/** What sees the messages. */
enum class Seen { Nowhere, NobodyAdded, Counted };

/** Counts messages and calls, as simple as that is. */
class Counter final : public CCInterceptor, public InvokeInterceptor {
 public:
  void messageSent(const InterceptedMessage& /*message*/) override { add(); }
  void messageReceived(const InterceptedMessage& /*message*/) override { add(); }
  void invoked(const Invocation& /*invocation*/) override { add(); }

 private:
  void add() { count_.fetch_add(1, std::memory_order_relaxed); }

  std::atomic<unsigned> count_{0};
};

/** One after the other without waiting. @returns messages a second, and nanoseconds a message. */
Figures sendOurs(const std::string& mode, std::uint32_t count, Seen seen) {
  Counter counter;
  EchoWorld one(mode, {.dispatchers = seen != Seen::Nowhere});
  if (seen == Seen::Counted) {
    one.world.messages.addInterceptor(&counter);
    one.world.invocations.addInterceptor(&counter);
  }
  const std::string data(kSmallPayload, 'x');
  const std::string to = channelName(0);
  const auto send = [&](std::uint32_t messages) {
    Arrivals::expect(messages);
    for (std::uint32_t i = 0; i < messages; ++i) one.world.channel().sendTo(to, data);
    Arrivals::awaitAll();
  };
  send(count / 10 + 1);
  const Stopwatch watch;
  send(count);
  const double took = watch.microseconds();
  one.world.end();
  return {count / took * 1e6, took / count * 1e3};
}

Figures sendBare(std::uint32_t count) {
  Receiver receiver;
  const std::string data(kSmallPayload, 'x');
  const Stopwatch watch;
  for (std::uint32_t i = 0; i < count; ++i) receiver.put(data);
  receiver.awaitAll();
  return {count / watch.microseconds() * 1e6};
}

Side ours(const std::string& name, const std::string& mode, std::uint32_t count, Seen seen) {
  return {name, [=] { return sendOurs(mode, count, seen); }};
}

}  // namespace

void pipelined(Bench& bench) {
  const auto count = static_cast<std::uint32_t>(bench.sized(200000, 1000));
  const Series series = bench.run(1, {ours("ours, ST", "ST", count, Seen::NobodyAdded),
                                      ours("ours, MT", "MT", count, Seen::NobodyAdded),
                                      {"floor", [count] { return sendBare(count); }}});
  bench.table("pipelined", "Messages of 64 bytes without waiting", "messages a second")
      .add("one processor", series.cells());
  bench.aimAtLeast("pipelined messages, ST", ratios(series.figure(0), series.figure(2)),
                   kPipelinedLimit);
  bench.aimAtLeast("pipelined messages, MT", ratios(series.figure(1), series.figure(2)),
                   kPipelinedLimit);
}

void interceptors(Bench& bench) {
  const auto count = static_cast<std::uint32_t>(bench.sized(200000, 1000));
  const Series series = bench.run(1, {ours("no dispatcher", "ST", count, Seen::Nowhere),
                                      ours("no interceptor", "ST", count, Seen::NobodyAdded),
                                      ours("counting", "ST", count, Seen::Counted)});
  constexpr std::size_t kEach = 1;
  bench.table("interceptors", "A message, and who sees it", "ns")
      .add("one processor", series.cells(kEach));
  bench.aimAtMost("message without interceptors, to none possible",
                  ratios(series.figure(1, kEach), series.figure(0, kEach)), kNoneLimit);
  bench.aimAtMost("counting interceptors",
                  differences(series.figure(2, kEach), series.figure(1, kEach)), kCountingLimit,
                  "ns a message");
}

}  // namespace zerva::bench
