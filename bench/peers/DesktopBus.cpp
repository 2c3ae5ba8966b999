#include <stdexcept>

#include "bench/floors/SocketEcho.h"
#include "bench/harness/Repeat.h"
#include "bench/ours/TwoHosts.h"
#include "bench/peers/Peers.h"
#include "bench/peers/SdBus.h"

namespace zerva::bench {

namespace {

constexpr double kLimit = 1;

template <typename Peer>
Figures callPeer(int times) {
  Peer peer;
  const std::string data(kSmallPayload, 'x');
  return repeat(times, [&] { peer.call(data); });
}

Figures callOurs(int times) {
  TwoHosts hosts("ST");
  const std::string data(kSmallPayload, 'x');
  return repeat(times, [&] {
    if (hosts.echo().echo(data).size() != kSmallPayload) throw std::runtime_error("a wrong answer");
  });
}

Figures callBare(int times) {
  SocketEcho socket({kSmallPayload, 1, kSmallPayload});
  return repeat(times, [&] { socket.call(); });
}

}  // namespace

void desktopBus(Bench& bench) {
  const int times = bench.sized(10000, 100);
  const Series series =
      bench.run(1, {{"floor", [times] { return callBare(times); }},
                    {"ours, ST", [times] { return callOurs(times); }},
                    {"sd-bus, direct", [times] { return callPeer<SdBusDirect>(times); }},
                    {"sd-bus, daemon", [times] { return callPeer<SdBusThroughDaemon>(times); }}});
  bench.table("peers-processes", "A call between processes with others, 64 bytes", "us")
      .add("one processor, mean", series.cells());
  bench.aimAtMost("call between processes, to the leanest bus",
                  ratios(series.figure(1), series.figure(2)), kLimit);
}

}  // namespace zerva::bench
