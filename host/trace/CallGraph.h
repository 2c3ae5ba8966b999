#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/trace/GraphSource.h"
#include "host/trace/RunModel.h"

namespace zerva {

/** An interface that a service says it has, or that is called without that. */
struct DeclaredInterface {
  std::string name;
  /** Whether somebody called it. */
  bool called = false;
  /** Whether the service's line names it. */
  bool declared = true;
};

/** Somebody who calls or is called. */
struct GraphNode {
  /** Its channel, the first interface of a legacy service, or what stands for a host. */
  std::string name;
  /** The process, by its place among those that are known; nothing for one that is in none. */
  std::optional<std::size_t> process;
  /** Whether a line of a directive file made it. */
  bool declared = false;
  std::vector<DeclaredInterface> interfaces;
  /** Whether its own calls would be known. */
  bool lookedAt = true;
};

/** The calls of one method. A message that is no call has neither interface nor method. */
struct MethodCalls {
  std::string interface;
  std::string method;
  std::uint64_t count = 0;
  std::uint64_t failures = 0;
  std::map<std::int64_t, std::uint64_t> times;
};

/** All calls from one to another; both by their places. */
struct GraphArrow {
  std::size_t from = 0;
  std::size_t to = 0;
  std::vector<MethodCalls> methods;

  std::uint64_t count() const;
  std::uint64_t failures() const;
  /** @returns how long half of the calls took at most, in nanoseconds. */
  std::int64_t median() const;
};

/** Who called whom. */
struct CallGraph {
  /** What each process is called. */
  std::vector<std::string> processes;
  std::vector<GraphNode> nodes;
  std::vector<GraphArrow> arrows;
  /** How many events are missing, so that there may be more calls. */
  std::int64_t lost = 0;
  /** How many calls more there were of those that cannot be told apart, and how many failed. */
  std::uint64_t others = 0;
  std::uint64_t failedOthers = 0;
  /** Whether it tells of processes that run, and no traces. */
  bool live = false;
};

/**
 * @param sources one for each process. @param registry whether with the service registry and its
 *     calls.
 */
CallGraph callGraphOf(const std::vector<GraphSource>& sources, bool registry);

/** As above, of traces. */
CallGraph callGraphOf(const std::vector<RunModel>& runs, bool registry);

/** @returns the middle of so many durations; see `calls` in docs/trace.md. */
std::int64_t medianOf(const std::map<std::int64_t, std::uint64_t>& times);

/** @returns the graph as JSON. */
std::string callGraphJson(const CallGraph& graph);

}  // namespace zerva
