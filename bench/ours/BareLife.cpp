#include <map>
#include <stdexcept>
#include <string>

#include "SvcProxyData.h"
#include "bench/floors/BareServices.h"
#include "bench/floors/FutexPing.h"
#include "bench/harness/Clock.h"
#include "bench/ours/Footprint.h"
#include "bench/ours/Libraries.h"
#include "bench/ours/Life.h"
#include "bench/ours/Names.h"
#include "bench/ours/World.h"

namespace zerva::bench {

namespace {

constexpr int kRoundTrips = 5000;

BareParts partsOf(const LifePlan& plan) {
  const bool lazy = plan.keyword.rfind("service_info:", 0) == 0;
  const bool legacy = plan.keyword.rfind("service_legacy:", 0) == 0;
  return {!lazy, !legacy};
}

void use(const LifePlan& plan, Figures& figures) {
  const Names names(plan.services);
  std::multimap<std::string, SvcProxyData> map;
  for (const std::string& name : names.all()) map.emplace(name, SvcProxyData{});
  figures[kFind] =
      names.nanosecondsEach([&](const std::string& name) { return map.find(name) != map.end(); });

  FutexPing ping;
  FutexPing::Payload payload{};
  ping.call(payload);
  const Stopwatch calls;
  for (int i = 0; i < kRoundTrips; ++i) payload = ping.call(payload);
  figures[kCall] = calls.microseconds() / kRoundTrips;
}

}  // namespace

Figures bareLife(const LifePlan& plan) {
  Figures figures(kCall + 1);
  BareServices services(partsOf(plan));
  std::vector<std::string> paths;
  for (int i = 0; i < plan.services; ++i) {
    paths.push_back(copiesDirectory() + "/" + copyName(i % plan.libraries));
  }
  const std::size_t before = residentBytes();

  const Stopwatch up;
  for (int i = 0; i < plan.services; ++i) {
    services.bringUp(paths[static_cast<std::size_t>(i)], interfaceName(i) + "," + channelName(i));
  }
  services.awaitAnnouncements();
  figures[kBringUp] = up.microseconds() / plan.services;
  figures[kResident] =
      static_cast<double>(residentBytes() - before) / 1024 / static_cast<double>(plan.services);

  if (plan.used) use(plan, figures);

  const Stopwatch down;
  services.takeDown();
  figures[kTearDown] = down.microseconds() / plan.services;
  expectUnmapped();
  return figures;
}

void expectUnmapped() {
  if (const std::size_t left = mappedCopies(); left != 0) {
    throw std::runtime_error(std::to_string(left) + " mappings of libraries are left");
  }
}

}  // namespace zerva::bench
