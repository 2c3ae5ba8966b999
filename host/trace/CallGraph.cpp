#include "host/trace/CallGraph.h"

#include <algorithm>
#include <bit>
#include <nlohmann/json.hpp>
#include <sstream>
#include <tuple>
#include <utility>

namespace zerva {
namespace {

constexpr const char* kRegistryChannel = "/zerva/serviceregistry";

std::vector<DeclaredInterface> interfacesOf(const GraphSource::Service& service) {
  std::vector<DeclaredInterface> interfaces;
  std::istringstream names(service.interfaces);
  for (std::string name; names >> name;) interfaces.push_back({name});
  return interfaces;
}

class Builder {
 public:
  explicit Builder(bool registry) : registry_(registry) {}

  CallGraph build(const std::vector<GraphSource>& sources) {
    for (std::size_t process = 0; process < sources.size(); ++process) {
      declare(sources[process], process);
    }
    for (std::size_t process = 0; process < sources.size(); ++process) {
      serve(sources[process], process);
    }
    for (std::size_t process = 0; process < sources.size(); ++process) {
      for (const CallRun& call : sources[process].calls) add(call, process, sources[process].pid);
    }
    return std::move(graph_);
  }

 private:
  bool isLeftOut(const std::string& channel) const {
    return !registry_ && channel == kRegistryChannel;
  }

  void declare(const GraphSource& source, std::size_t process) {
    graph_.lost += source.lost;
    graph_.others += source.others;
    graph_.failedOthers += source.failedOthers;
    graph_.processes.push_back(source.name);
    for (const GraphSource::Service& service : source.services) {
      if (isLeftOut(service.name)) continue;
      const std::size_t place = graph_.nodes.size();
      // The interfaces that a line names may be more than once in a process, its channel too.
      if (!own_.try_emplace({process, service.name}, place).second) continue;
      graph_.nodes.push_back({service.name, process, true, interfacesOf(service)});
      if (service.hasChannel) channels_.try_emplace(service.name, place);
    }
  }

  /** What is served and declared nowhere is there if it is called, or all that is known. */
  void serve(const GraphSource& source, std::size_t process) {
    for (const std::string& channel : source.channels) {
      if (isLeftOut(channel) || channels_.contains(channel)) continue;
      served_.try_emplace(channel, std::pair{process, source.lookedAt});
      if (!source.lookedAt) callee(channel);
    }
  }

  std::size_t caller(const std::string& name, std::size_t process, std::int64_t pid) {
    const std::string shown = name.empty() ? "host " + std::to_string(pid) : name;
    const auto [known, isNew] = own_.try_emplace({process, shown}, graph_.nodes.size());
    if (isNew) graph_.nodes.push_back({shown, process, false, {}});
    return known->second;
  }

  std::size_t callee(const std::string& channel) {
    const auto [known, isNew] = channels_.try_emplace(channel, graph_.nodes.size());
    if (!isNew) return known->second;
    GraphNode node{channel, std::nullopt, false, {}, false};
    if (const auto server = served_.find(channel); server != served_.end()) {
      std::tie(node.process, node.lookedAt) = server->second;
    }
    graph_.nodes.push_back(std::move(node));
    return known->second;
  }

  static void noteInterface(GraphNode& node, const std::string& interface) {
    bool known = false;
    for (DeclaredInterface& declared : node.interfaces) {
      if (declared.name != interface) continue;
      declared.called = true;
      known = true;
    }
    if (known || !node.declared || interface.empty()) return;
    node.interfaces.push_back({interface, true, false});
  }

  void add(const CallRun& call, std::size_t process, std::int64_t pid) {
    if (isLeftOut(call.channel) || isLeftOut(call.caller)) return;
    const std::size_t from = caller(call.caller, process, pid);
    const std::size_t to = callee(call.channel);
    noteInterface(graph_.nodes[to], call.interface);
    const auto [known, isNew] = arrows_.try_emplace({from, to}, graph_.arrows.size());
    if (isNew) graph_.arrows.push_back({from, to, {}});
    graph_.arrows[known->second].methods.push_back(
        {call.interface, call.method, call.count, call.failures, call.times});
  }

  const bool registry_;
  CallGraph graph_;
  std::map<std::pair<std::size_t, std::string>, std::size_t> own_;
  std::map<std::string, std::size_t> channels_;
  std::map<std::string, std::pair<std::size_t, bool>>
      served_;  // by which process, looked at or not
  std::map<std::pair<std::size_t, std::size_t>, std::size_t> arrows_;
};

using Json = nlohmann::ordered_json;

Json nodeJson(const CallGraph& graph, const GraphNode& node) {
  Json json = {{"name", node.name},
               {"declared", node.declared},
               {"looked_at", node.lookedAt},
               {"interfaces", Json::array()}};
  if (node.process) json["process"] = graph.processes[*node.process];
  for (const DeclaredInterface& declared : node.interfaces) {
    json["interfaces"].push_back(
        {{"name", declared.name}, {"called", declared.called}, {"declared", declared.declared}});
  }
  return json;
}

Json arrowJson(const CallGraph& graph, const GraphArrow& arrow) {
  Json json = {{"from", graph.nodes[arrow.from].name},
               {"to", graph.nodes[arrow.to].name},
               {"count", arrow.count()},
               {"failures", arrow.failures()},
               {"median", arrow.median()},
               {"methods", Json::array()}};
  for (const MethodCalls& calls : arrow.methods) {
    json["methods"].push_back({{"interface", calls.interface},
                               {"method", calls.method},
                               {"count", calls.count},
                               {"failures", calls.failures},
                               {"median", medianOf(calls.times)}});
  }
  return json;
}

}  // namespace

std::uint64_t GraphArrow::count() const {
  std::uint64_t sum = 0;
  for (const MethodCalls& calls : methods) sum += calls.count;
  return sum;
}

std::uint64_t GraphArrow::failures() const {
  std::uint64_t sum = 0;
  for (const MethodCalls& calls : methods) sum += calls.failures;
  return sum;
}

std::int64_t GraphArrow::median() const {
  std::map<std::int64_t, std::uint64_t> all;
  for (const MethodCalls& calls : methods) {
    for (const auto& [last, count] : calls.times) all[last] += count;
  }
  return medianOf(all);
}

std::int64_t medianOf(const std::map<std::int64_t, std::uint64_t>& times) {
  std::uint64_t all = 0;
  for (const auto& [last, count] : times) all += count;
  std::uint64_t seen = 0;
  for (const auto& [last, count] : times) {
    seen += count;
    if (seen * 2 < all || all == 0) continue;
    if (last < 8) return last;
    // Durations are kept in four steps for each doubling; the middle of the step stands for it.
    const auto width = std::bit_width(static_cast<std::uint64_t>(last)) - 3;
    return last - ((std::int64_t{1} << width) - 1) / 2;
  }
  return 0;
}

CallGraph callGraphOf(const std::vector<GraphSource>& sources, bool registry) {
  return Builder(registry).build(sources);
}

CallGraph callGraphOf(const std::vector<RunModel>& runs, bool registry) {
  std::vector<GraphSource> sources;
  for (const RunModel& run : runs) sources.push_back(graphSourceOf(run));
  return callGraphOf(sources, registry);
}

std::string callGraphJson(const CallGraph& graph) {
  Json json = {{"processes", graph.processes},
               {"live", graph.live},
               {"lost", graph.lost},
               {"others", graph.others},
               {"failed_others", graph.failedOthers},
               {"nodes", Json::array()},
               {"calls", Json::array()}};
  for (const GraphNode& node : graph.nodes) json["nodes"].push_back(nodeJson(graph, node));
  for (const GraphArrow& arrow : graph.arrows) json["calls"].push_back(arrowJson(graph, arrow));
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace zerva
