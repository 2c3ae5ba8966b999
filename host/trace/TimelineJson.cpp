#include "host/trace/TimelineJson.h"

#include <map>
#include <nlohmann/json.hpp>

#include "host/trace/CriticalPath.h"
#include "host/trace/TimelineChart.h"

namespace zerva {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kSlowest = 10;

Json timeOf(const RunModel& run, const Interval& when) {
  return {{"begin", when.begin - run.start.begin}, {"duration", when.length()}};
}

Json serviceJson(const RunModel& run, const ServiceRun& service) {
  Json json = {{"name", service.name},       {"interfaces", service.interfaces},
               {"kind", service.kind},       {"mode", service.mode},
               {"library", service.library}, {"coming_up", service.comingUp().length()},
               {"waited", service.waited()}, {"stages", Json::array()},
               {"waits", Json::array()}};
  for (const StageRun& stage : service.stages) {
    Json one = {{"stage", nameOf(stage.stage)}};
    one.update(timeOf(run, stage.when));
    json["stages"].push_back(one);
  }
  for (const WaitRun& wait : service.waits) {
    Json one = {{"for", wait.what}};
    one.update(timeOf(run, wait.when));
    json["waits"].push_back(one);
  }
  if (service.up) json["up"] = *service.up - run.start.begin;
  if (service.firstRequest) {
    json["first_request"] = *service.firstRequest - run.start.begin;
    json["first_caller"] = service.firstCaller;
  }
  if (!service.error.empty()) json["error"] = service.error;
  return json;
}

Json hostJson(const RunModel& run) {
  Json waits = Json::array();
  for (const WaitRun& wait : run.host.waits) {
    Json one = {{"for", wait.what}};
    one.update(timeOf(run, wait.when));
    waits.push_back(one);
  }
  return {{"waits", waits}};
}

Json pathJson(const RunModel& run) {
  Json path = Json::array();
  for (const PathStep& step : criticalPath(run)) {
    Json one = timeOf(run, step.when);
    if (step.service) one["service"] = run.services[*step.service].name;
    if (step.stage) one["stage"] = nameOf(*step.stage);
    if (!step.waitedFor.empty()) one["waited_for"] = step.waitedFor;
    path.push_back(one);
  }
  return path;
}

double microseconds(std::int64_t nanoseconds) { return static_cast<double>(nanoseconds) / 1000.0; }

Json barJson(const RunModel& run, const std::string& name, const char* category, int thread,
             const Interval& when, const std::string& service) {
  return {{"name", name},
          {"cat", category},
          {"ph", "X"},
          {"ts", microseconds(when.begin)},
          {"dur", microseconds(when.length())},
          {"pid", run.pid},
          {"tid", thread},
          {"args", {{"service", service}}}};
}

Json nameJson(const RunModel& run, const char* what, int thread, const std::string& name) {
  return {
      {"name", what}, {"ph", "M"}, {"pid", run.pid}, {"tid", thread}, {"args", {{"name", name}}}};
}

}  // namespace

std::string timelineJson(const RunModel& run) {
  Json json = {{"file", run.file},
               {"pid", run.pid},
               {"start", run.start.length()},
               {"stop", run.stop ? Json(run.stop->length()) : Json(nullptr)},
               {"lost", run.lost},
               {"host", hostJson(run)},
               {"services", Json::array()},
               {"critical_path", pathJson(run)},
               {"slowest", Json::array()},
               {"failures", run.failures}};
  for (const ServiceRun& service : run.services) {
    json["services"].push_back(serviceJson(run, service));
  }
  for (const ServiceRun* service : slowestOf(run, kSlowest)) {
    json["slowest"].push_back(service->name);
  }
  return json.dump(2) + "\n";
}

std::string timelineTraceEvents(const RunModel& run, const std::vector<TraceLine>& lines) {
  Json events = Json::array();
  events.push_back(nameJson(run, "process_name", run.hostThread, run.file));
  std::map<int, std::string> threads;
  for (const TraceLine& line : lines) threads[line.thread] = line.threadName;
  for (const auto& [thread, name] : threads) {
    events.push_back(nameJson(run, "thread_name", thread, name));
  }
  for (const ServiceRun& service : run.services) {
    for (const StageRun& stage : service.stages) {
      events.push_back(barJson(run, service.name + " " + nameOf(stage.stage), nameOf(stage.stage),
                               stage.thread, stage.when, service.name));
    }
    for (const WaitRun& wait : service.waits) {
      events.push_back(
          barJson(run, "waits for " + wait.what, "waiting", wait.thread, wait.when, service.name));
    }
  }
  return Json{{"traceEvents", events}, {"displayTimeUnit", "ms"}}.dump(1) + "\n";
}

}  // namespace zerva
