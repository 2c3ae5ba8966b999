#include "host/trace/Advice.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>

#include "host/trace/DurationText.h"

namespace zerva {
namespace {

constexpr const char* kRegistryInterface = "ServiceRegistryIfc";

/** @returns whether a service does something that nobody asked it for, as far as a trace tells. */
bool worksByItself(const RunModel& run, const ServiceRun& service) {
  // Whoever is monitored has to be there.
  if (service.interfaces.find("HeartbeatServiceIfc") != std::string::npos) return true;
  return std::any_of(run.calls.begin(), run.calls.end(), [&](const CallRun& call) {
    return call.caller == service.name && call.interface != kRegistryInterface;
  });
}

/** @returns whether the trace tells all that would speak against it. */
bool tellsEnough(const RunModel& run, const AdviceLimits& limits) {
  const std::int64_t reaches = run.stop ? run.stop->begin : run.whole.end;
  return run.running && run.lost == 0 && reaches - run.start.end >= limits.soon;
}

std::optional<Advice> couldBeLazy(const RunModel& run, const ServiceRun& service,
                                  const AdviceLimits& limits) {
  if (service.kind != "immediate" || !service.up || !tellsEnough(run, limits)) return {};
  if (worksByItself(run, service)) return {};
  // The others need it to be announced at all.
  if (service.interfaces.find(kRegistryInterface) != std::string::npos) return {};
  const std::int64_t saving = service.comingUp().length() - service.total(Stage::Announcement);
  if (saving < limits.saving) return {};
  std::string reason;
  if (!service.firstRequest) {
    reason = "nobody sent it anything in the " + durationText(run.whole.end - run.start.end) +
             " after the start";
  } else if (*service.firstRequest - run.start.end > limits.soon) {
    reason = "it was first asked " + durationText(*service.firstRequest - run.start.end) +
             " after the start";
  } else {
    return {};
  }
  return Advice{Advice::Kind::MakeLazy, run.file, service.name, saving, reason};
}

std::optional<Advice> shouldBeImmediate(const RunModel& run, const ServiceRun& service,
                                        const AdviceLimits& limits) {
  if (!run.running || !service.isLazy() || !service.up || !service.firstRequest) return {};
  const std::int64_t after = *service.firstRequest - run.start.end;
  const std::int64_t waited = *service.up - *service.firstRequest;
  if (after > limits.soon || waited < limits.saving) return {};
  const std::string when =
      after <= 0 ? "before the start was over" : "only " + durationText(after) + " after the start";
  return Advice{Advice::Kind::MakeImmediate, run.file, service.name, waited,
                service.firstCaller + " asked for it " + when + " and waited for its making"};
}

const char* headOf(Advice::Kind kind) {
  return kind == Advice::Kind::MakeLazy ? "could be lazy (service_info)"
                                        : "should not be lazy (service_instance)";
}

}  // namespace

std::vector<Advice> adviceFor(const std::vector<RunModel>& runs, const AdviceLimits& limits) {
  std::vector<Advice> all;
  for (const RunModel& run : runs) {
    for (const ServiceRun& service : run.services) {
      if (auto advice = couldBeLazy(run, service, limits)) all.push_back(*advice);
      if (auto advice = shouldBeImmediate(run, service, limits)) all.push_back(*advice);
    }
  }
  std::stable_sort(all.begin(), all.end(), [](const Advice& one, const Advice& other) {
    return one.saving > other.saving;
  });
  return all;
}

std::string adviceText(const std::vector<Advice>& advice) {
  if (advice.empty()) return "Nothing to advise: no change to lazy or immediate would save much.\n";
  std::string text;
  bool lazy = false;
  for (const Advice& one : advice) {
    text += one.file + ": " + one.service + " " + headOf(one.kind) + "\n    " + one.reason +
            "; saves " + durationText(one.saving) + "\n";
    lazy = lazy || one.kind == Advice::Kind::MakeLazy;
  }
  if (lazy) {
    text +=
        "A trace does not see what a service does by itself, on a timer or a thread of its own:\n"
        "only one that does nothing unasked can be lazy.\n";
  }
  return text;
}

std::string adviceJson(const std::vector<Advice>& advice) {
  using Json = nlohmann::ordered_json;
  Json json = Json::array();
  for (const Advice& one : advice) {
    json.push_back({{"advice", one.kind == Advice::Kind::MakeLazy ? "lazy" : "immediate"},
                    {"file", one.file},
                    {"service", one.service},
                    {"saving", one.saving},
                    {"reason", one.reason}});
  }
  return json.dump(2) + "\n";
}

}  // namespace zerva
