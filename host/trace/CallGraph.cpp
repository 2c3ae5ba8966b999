#include "host/trace/CallGraph.h"

#include <bit>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <utility>

namespace zerva {
namespace {

constexpr const char* kRegistryChannel = "/zerva/serviceregistry";

class Builder {
 public:
  Builder(const std::vector<GraphSource>& sources, bool registry)
      : sources_(sources), registry_(registry) {}

  CallGraph build() {
    for (std::size_t process = 0; process < sources_.size(); ++process) declare(process);
    for (std::size_t process = 0; process < sources_.size(); ++process) showUnknown(process);
    for (std::size_t process = 0; process < sources_.size(); ++process) {
      for (const CallRun& call : sources_[process].calls) add(call, process);
    }
    return std::move(graph_);
  }

 private:
  using Processes = std::map<std::string, std::set<std::size_t>>;

  bool isLeftOut(const std::string& channel) const {
    return !registry_ && channel == kRegistryChannel;
  }

  void declare(std::size_t process) {
    const GraphSource& source = sources_[process];
    graph_.lost += source.lost;
    graph_.others += source.others;
    graph_.failedOthers += source.failedOthers;
    graph_.processes.push_back(source.name);
    for (const GraphSource::Service& service : source.services) {
      if (isLeftOut(service.name)) continue;
      const std::size_t place = nodeOf(process, service.name);
      graph_.nodes[place].declared = true;
      std::istringstream names(service.interfaces);
      for (std::string name; names >> name;) interfaceOf(place, name, true);
      if (service.hasChannel) known_[service.name].insert(process);
    }
    for (const std::string& channel : source.channels) serving_[channel].insert(process);
    for (const CallRun& call : source.calls) {
      // Who calls and is declared nowhere is known by the channel that it serves.
      if (call.caller.empty() || places_.contains({process, call.caller})) continue;
      known_[call.caller].insert(process);
    }
  }

  /** Of a process that tells nothing the channels are all that is known, called or not. */
  void showUnknown(std::size_t process) {
    if (sources_[process].lookedAt) return;
    for (const std::string& channel : sources_[process].channels) {
      if (!isLeftOut(channel)) nodeOf(process, channel);
    }
  }

  std::size_t nodeOf(std::optional<std::size_t> process, const std::string& name) {
    const auto [known, isNew] = places_.try_emplace({process, name}, graph_.nodes.size());
    if (isNew) {
      const bool lookedAt = process && sources_[*process].lookedAt;
      graph_.nodes.push_back({name, process, false, {}, lookedAt});
    }
    return known->second;
  }

  /** @returns one of a node. @param declared whether the line names it, where it is a new one. */
  DeclaredInterface& interfaceOf(std::size_t place, const std::string& name, bool declared) {
    std::vector<DeclaredInterface>& all = graph_.nodes[place].interfaces;
    const auto [known, isNew] = interfaces_.try_emplace({place, name}, all.size());
    if (isNew) all.push_back({name, false, declared});
    return all[known->second];
  }

  /**
   * @returns whom a process reaches by the name of a channel. Who serves it comes before who only
   *     should or did, and the process itself before others.
   */
  std::optional<std::size_t> serverOf(const std::string& channel, std::size_t process) const {
    for (const Processes* const candidates : {&serving_, &known_}) {
      const auto found = candidates->find(channel);
      if (found == candidates->end()) continue;
      return found->second.contains(process) ? process : *found->second.begin();
    }
    return std::nullopt;
  }

  void add(const CallRun& call, std::size_t process) {
    if (isLeftOut(call.channel) || isLeftOut(call.caller)) return;
    const std::string host = "host " + std::to_string(sources_[process].pid);
    const std::size_t from = nodeOf(process, call.caller.empty() ? host : call.caller);
    const std::size_t to = nodeOf(serverOf(call.channel, process), call.channel);
    if (!call.interface.empty()) interfaceOf(to, call.interface, false).called = true;
    const auto [known, isNew] = arrows_.try_emplace({from, to}, graph_.arrows.size());
    if (isNew) graph_.arrows.push_back({from, to, {}});
    graph_.arrows[known->second].methods.push_back(
        {call.interface, call.method, call.count, call.failures, call.times});
  }

  const std::vector<GraphSource>& sources_;
  const bool registry_;
  CallGraph graph_;
  Processes serving_;
  Processes known_;  // declared, or heard of as callers
  // Places in the graph: of nodes by process and name, of interfaces in their nodes, of arrows.
  std::map<std::pair<std::optional<std::size_t>, std::string>, std::size_t> places_;
  std::map<std::pair<std::size_t, std::string>, std::size_t> interfaces_;
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
               {"from_node", arrow.from},
               {"to_node", arrow.to},
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
  return Builder(sources, registry).build();
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
