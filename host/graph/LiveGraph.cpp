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

std::string whatIsMissing(const Answer& answer) {
  if (answer.calls) return {};
  if (answer.status) return "its calls are not known: " + answer.why;
  if (answer.tells) return "not looked at: it does not answer: " + answer.why;
  // Whoever looks at the bus meanwhile is such a one.
  if (answer.channels.empty())
    return "not looked at: it serves nothing and does not tell how it is";
  return "not looked at: it was not started with --status";
}

GraphSource graphSourceOf(const Answer& answer) {
  GraphSource source;
  source.pid = answer.process;
  source.name = "process " + std::to_string(answer.process);
  source.lookedAt = answer.calls.has_value();
  if (!source.lookedAt) source.name += ", " + whatIsMissing(answer);
  for (const std::string& channel : answer.channels) {
    if (channel != HostStatusIfc::channelOf(answer.process)) source.channels.push_back(channel);
  }
  if (answer.status) {
    source.name = answer.status->file + ", " + source.name;
    for (const ServiceStatus& service : answer.status->services) {
      source.services.push_back(declaredBy(service));
    }
  }
  if (answer.calls) {
    source.calls = answer.calls->calls;
    source.others = answer.calls->others;
    source.failedOthers = answer.calls->failedOthers;
  }
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
