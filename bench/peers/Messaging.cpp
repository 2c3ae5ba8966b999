#include <zmq.h>

#include <array>
#include <stdexcept>

#include "bench/floors/FutexPing.h"
#include "bench/floors/PlainThread.h"
#include "bench/harness/Repeat.h"
#include "bench/ours/EchoWorld.h"
#include "bench/peers/Peers.h"

namespace zerva::bench {

namespace {

constexpr double kLimit = 1;

/** Two sockets of ZeroMQ within a process, the other on a thread that sends back what comes. */
class ZeroMq {
 public:
  ZeroMq()
      : context_(::zmq_ctx_new()),
        near_(::zmq_socket(context_, ZMQ_PAIR)),
        far_(::zmq_socket(context_, ZMQ_PAIR)) {
    if (::zmq_bind(near_, "inproc://echo") != 0 || ::zmq_connect(far_, "inproc://echo") != 0) {
      throw std::runtime_error("the sockets cannot be joined");
    }
    thread_ = std::make_unique<PlainThread>(&ZeroMq::run, this);
  }

  ~ZeroMq() {
    ::zmq_send(near_, "", 0, 0);
    thread_->join();
    ::zmq_close(near_);
    ::zmq_close(far_);
    ::zmq_ctx_term(context_);
  }
  ZeroMq(const ZeroMq&) = delete;
  ZeroMq& operator=(const ZeroMq&) = delete;

  void call(std::array<char, kSmallPayload>& data) {
    ::zmq_send(near_, data.data(), data.size(), 0);
    if (::zmq_recv(near_, data.data(), data.size(), 0) != static_cast<int>(kSmallPayload)) {
      throw std::runtime_error("a wrong answer");
    }
  }

 private:
  static void run(void* self) {
    void* const socket = static_cast<ZeroMq*>(self)->far_;
    std::array<char, kSmallPayload> data{};
    for (;;) {
      const int size = ::zmq_recv(socket, data.data(), data.size(), 0);
      if (size <= 0) return;
      ::zmq_send(socket, data.data(), static_cast<std::size_t>(size), 0);
    }
  }

  void* const context_;
  void* const near_;
  void* const far_;
  std::unique_ptr<PlainThread> thread_;
};

Figures callZeroMq(int times) {
  ZeroMq sockets;
  std::array<char, kSmallPayload> data{};
  return repeat(times, [&] { sockets.call(data); });
}

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

Figures callBare(int times) {
  FutexPing ping;
  FutexPing::Payload payload{};
  return repeat(times, [&] { payload = ping.call(payload); });
}

}  // namespace

void messaging(Bench& bench) {
  const int times = bench.sized(20000, 200);
  const Series series = bench.run(1, {{"floor", [times] { return callBare(times); }},
                                      {"ours, ST", [times] { return callOurs("ST", times); }},
                                      {"ours, MT", [times] { return callOurs("MT", times); }},
                                      {"ZeroMQ", [times] { return callZeroMq(times); }}});
  bench.table("peers-call", "A call within a process with others, 64 bytes", "us")
      .add("one processor, mean", series.cells());
  bench.aimAtMost("in-process call, ST, to the echo of a messaging library",
                  ratios(series.figure(1), series.figure(3)), kLimit);
  bench.aimAtMost("in-process call, MT, to the echo of a messaging library",
                  ratios(series.figure(2), series.figure(3)), kLimit);
}

}  // namespace zerva::bench
