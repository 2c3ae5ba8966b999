#include "host/graph/LiveGraph.h"

#include "host/live/HostStatusIfc.h"

namespace zerva {
namespace {

GraphSource::Service declaredBy(const ServiceStatus& service) {
  if (!service.channel.empty()) return {service.channel, service.interfaces, true};
  // By the name that a trace and the counts of its calls have for it.
  const std::string first = service.interfaces.substr(0, service.interfaces.find(' '));
  return {first.empty() ? service.creator : first, service.interfaces, false};
}

}  // namespace

std::string whyNotLookedAt(const Answer& answer) {
  if (answer.status) return {};
  return answer.tells ? "it does not answer: " + answer.why : "it was not started with --status";
}

GraphSource graphSourceOf(const Answer& answer) {
  GraphSource source;
  source.pid = answer.process;
  source.name = "process " + std::to_string(answer.process);
  for (const std::string& channel : answer.channels) {
    if (channel != HostStatusIfc::channelOf(answer.process)) source.channels.push_back(channel);
  }
  if (!answer.status) {
    source.lookedAt = false;
    source.name += ", not looked at: " + whyNotLookedAt(answer);
    return source;
  }
  source.name = answer.status->file + ", " + source.name;
  for (const ServiceStatus& service : answer.status->services) {
    source.services.push_back(declaredBy(service));
  }
  source.calls = answer.calls.calls;
  source.others = answer.calls.others;
  source.failedOthers = answer.calls.failedOthers;
  return source;
}

CallGraph liveCallGraph(const std::vector<Answer>& answers, bool registry) {
  std::vector<GraphSource> sources;
  for (const Answer& answer : answers) sources.push_back(graphSourceOf(answer));
  CallGraph graph = callGraphOf(sources, registry);
  graph.live = true;
  return graph;
}

}  // namespace zerva
