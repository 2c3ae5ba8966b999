#include "host/trace/CallGraph.h"

#include <algorithm>
#include <bit>
#include <nlohmann/json.hpp>
#include <sstream>
#include <utility>

namespace zerva {
namespace {

constexpr const char* kRegistryChannel = "/zerva/serviceregistry";

std::vector<DeclaredInterface> interfacesOf(const ServiceRun& service) {
  std::vector<DeclaredInterface> interfaces;
  std::istringstream names(service.interfaces);
  for (std::string name; names >> name;) interfaces.push_back({name});
  return interfaces;
}

class Builder {
 public:
  explicit Builder(bool registry) : registry_(registry) {}

  CallGraph build(const std::vector<RunModel>& runs) {
    for (std::size_t process = 0; process < runs.size(); ++process) declare(runs[process], process);
    for (std::size_t process = 0; process < runs.size(); ++process) {
      for (const CallRun& call : runs[process].calls) add(call, process, runs[process].pid);
    }
    return std::move(graph_);
  }

 private:
  bool isLeftOut(const std::string& channel) const {
    return !registry_ && channel == kRegistryChannel;
  }

  void declare(const RunModel& run, std::size_t process) {
    graph_.lost += run.lost;
    graph_.processes.push_back(run.file + ", process " + std::to_string(run.pid));
    for (const ServiceRun& service : run.services) {
      if (isLeftOut(service.name)) continue;
      const std::size_t place = graph_.nodes.size();
      // The interfaces that a line names may be more than once in a process, its channel too.
      if (!own_.try_emplace({process, service.name}, place).second) continue;
      graph_.nodes.push_back({service.name, process, true, interfacesOf(service)});
      // A legacy service has no channel by which others could reach it.
      if (service.kind != "legacy") channels_.try_emplace(service.name, place);
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
    if (isNew) graph_.nodes.push_back({channel, std::nullopt, false, {}});
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
  std::map<std::pair<std::size_t, std::size_t>, std::size_t> arrows_;
};

using Json = nlohmann::ordered_json;

Json nodeJson(const CallGraph& graph, const GraphNode& node) {
  Json json = {{"name", node.name}, {"declared", node.declared}, {"interfaces", Json::array()}};
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

CallGraph callGraphOf(const std::vector<RunModel>& runs, bool registry) {
  return Builder(registry).build(runs);
}

std::string callGraphJson(const CallGraph& graph) {
  Json json = {{"processes", graph.processes},
               {"lost", graph.lost},
               {"nodes", Json::array()},
               {"calls", Json::array()}};
  for (const GraphNode& node : graph.nodes) json["nodes"].push_back(nodeJson(graph, node));
  for (const GraphArrow& arrow : graph.arrows) json["calls"].push_back(arrowJson(graph, arrow));
  return json.dump(2) + "\n";
}

}  // namespace zerva
