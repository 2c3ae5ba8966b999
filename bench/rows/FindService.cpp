#include <dlfcn.h>

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "SvcProxyData.h"
#include "bench/floors/FutexPing.h"
#include "bench/harness/Clock.h"
#include "bench/ours/Libraries.h"
#include "bench/ours/Names.h"
#include "bench/ours/World.h"
#include "bench/rows/Rows.h"
#include "framework/Proxy.h"

namespace zerva::bench {

namespace {

constexpr double kAloneLimit = 1.4;
constexpr double kTogetherLimit = 1.1;
constexpr double kFirstLimit = 3.0;

/** A name is looked up. @returns whether it is there. */
using Find = std::function<bool(const std::string&)>;

/** Counts what the registry's channel gets. */
class RegistryMessages final : public CCInterceptor {
 public:
  void messageSent(const InterceptedMessage& /*message*/) override {}
  void messageReceived(const InterceptedMessage& /*message*/) override { ++count_; }
  unsigned count() const { return count_; }

 private:
  std::atomic<unsigned> count_{0};
};

/** @returns the mean of the threads, in nanoseconds a look-up. */
template <typename Look>
double together(int count, const Look& look) {
  std::atomic<int> awaited{count};
  std::vector<double> each(static_cast<std::size_t>(count));
  std::vector<std::thread> all;
  for (double& figure : each) {
    all.emplace_back([&] {
      --awaited;
      while (awaited != 0) std::this_thread::yield();
      figure = look();
    });
  }
  for (std::thread& thread : all) thread.join();
  double sum = 0;
  for (const double figure : each) sum += figure;
  return sum / count;
}

/** @returns nanoseconds a look-up, and how many messages went to the registry meanwhile. */
Figures findOurs(int services, int threads) {
  makeCopies(1);
  RegistryMessages messages;
  World world;
  world.messages.addInterceptor(&messages);
  std::string lines = accessLines(services);
  for (int i = 0; i < services; ++i) lines += serviceLine("service_instance: MT", copyName(0), i);
  world.process(lines);
  const Names names(services);
  for (const std::string& name : names.all()) world.find(name);
  const unsigned before = messages.count();
  SvcRTEContext& context = world.context();
  const double each = together(threads, [&] {
    return names.nanosecondsEach(
        [&](const std::string& name) { return context.findService(name) != nullptr; });
  });
  const double sent = messages.count() - before;
  world.end();
  return {each, sent};
}

Figures findBare(int services, int threads, bool locked) {
  const Names names(services);
  std::multimap<std::string, SvcProxyData> map;
  std::mutex mutex;
  for (const std::string& name : names.all()) map.emplace(name, SvcProxyData{});
  const auto find = [&](const std::string& name) { return map.find(name) != map.end(); };
  const auto findLocked = [&](const std::string& name) {
    const std::lock_guard lock(mutex);
    return find(name);
  };
  return {together(threads, [&] {
    return locked ? names.nanosecondsEach(findLocked) : names.nanosecondsEach(find);
  })};
}

/** Proxies are made in a library that is open already. @returns microseconds each. */
Figures findFirstOurs(int services) {
  makeCopies(1);
  World world;
  std::string lines = accessLines(services + 1);
  for (int i = 0; i <= services; ++i) lines += serviceLine("service_instance: MT", copyName(0), i);
  world.process(lines);
  world.find(interfaceName(services));
  const Names names(services);
  const Stopwatch watch;
  for (const std::string& name : names.all()) world.find(name);
  const double each = watch.microseconds() / services;
  world.end();
  return {each};
}

/** Two round trips, open, resolve and create. */
Figures findFirstBare(int services) {
  const std::string library = buildDirectory() + "/plugins/libEchoAccess.so";
  void* const kept = ::dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (kept == nullptr) throw std::runtime_error(::dlerror());
  FutexPing ping;
  FutexPing::Payload payload{};
  ping.call(payload);
  const Stopwatch watch;
  for (int i = 0; i < services; ++i) {
    payload = ping.call(ping.call(payload));
    void* const again = ::dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    reinterpret_cast<Proxy* (*)()>(::dlsym(again, "createEchoProxy"))();  // stays, as ours do
  }
  return {watch.microseconds() / services};
}

}  // namespace

void findRecorded(Bench& bench) {
  const int count = bench.sized(1000, 20);
  Table& table = bench.table("find", "A look-up of a recorded proxy", "ns");
  const Series alone =
      bench.run(1, {{"ours", [count] { return findOurs(count, 1); }},
                    {"floor", [count] { return findBare(count, 1, false); }},
                    {"floor with a mutex", [count] { return findBare(count, 1, true); }}});
  table.add("one thread", alone.cells());
  bench.aimAtMost("findService of a recorded proxy", ratios(alone.figure(0), alone.figure(1)),
                  kAloneLimit);
  bench.aimAtMost("messages to the registry for it", alone.figure(0, 1), 0, "messages");

  const Series two =
      bench.run(2, {{"ours", [count] { return findOurs(count, 2); }},
                    {"floor", [count] { return findBare(count, 2, false); }},
                    {"floor with a mutex", [count] { return findBare(count, 2, true); }}});
  table.add("two threads, two processors", two.cells());
  bench.aimAtMost("findService with two threads", ratios(two.figure(0), two.figure(2)),
                  kTogetherLimit);
}

void findFirst(Bench& bench) {
  const int count = bench.sized(1000, 20);
  const Series series = bench.run(1, {{"ours", [count] { return findFirstOurs(count); }},
                                      {"floor", [count] { return findFirstBare(count); }}});
  bench.table("find-first", "The look-up that makes a proxy", "us")
      .add("library open already", series.cells());
  bench.aimAtMost("first findService", ratios(series.figure(0), series.figure(1)), kFirstLimit);
}

}  // namespace zerva::bench
