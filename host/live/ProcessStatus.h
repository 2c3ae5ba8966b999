#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zerva {

/** Where a service is in its life. */
enum class ServiceState {
  /** Its line of the file is still to come. */
  Waiting,
  /** Announced, and made when the first message comes. */
  Lazy,
  /** Being made: from the opening of its library to the end of its `init`. */
  Initialising,
  Running,
  /** The process stops, and it is told to, or will be. */
  Stopping,
  /** It did not come up. */
  Failed,
  /** Deleted. */
  Ended
};

/** @returns the state in one word, as it is printed. */
const char* nameOf(ServiceState state);

/** What the counters of a service's executor say. */
struct ExecutorStatus {
  /** The same as long as the executor lives; no other one of the process has it. */
  std::uint64_t id = 0;
  /** Messages that it has begun to serve: calls, other messages, expiries of timers. */
  std::uint64_t requests = 0;
  /** How many wait. */
  std::size_t queued = 0;
  /** How many it serves now. */
  unsigned serving = 0;
  /** How many of the requests failed. */
  std::uint64_t errors = 0;
};

/** How a service is. */
struct ServiceStatus {
  /** Interface names separated by single blanks. */
  std::string interfaces;
  /** Empty for a legacy service. */
  std::string channel;
  std::string library;
  std::string creator;
  /** The type and the library that it comes from; empty as long as it is not made. */
  std::string type;
  /** "MT", "ST", "legacy", with ", lazy" where that is so; empty when it is not known. */
  std::string mode;
  ServiceState state = ServiceState::Waiting;
  /** Since when it is in that state. */
  double stateSeconds = 0;
  /** What its making is about at this moment; for one that is being made. */
  std::string doing;
  /** Why it failed. */
  std::string why;
  /** How long its `init` took; for one that came up. */
  std::optional<double> initSeconds;
  /** Nothing for one without an executor. */
  std::optional<ExecutorStatus> executor;
  /** Something was queued in two readings, and nothing was taken between them. */
  bool stuck = false;
};

/** How a process and its services are. */
struct ProcessStatus {
  int process = 0;
  /** The directive file, as it was named. */
  std::string file;
  /** "waiting", "starting", "running", "stopping", "draining", "deleting", "ending_processes". */
  std::string phase;
  /** What the process waits for, for people; empty when it runs. */
  std::string waitsFor;
  /** Since when it is up. */
  double upSeconds = 0;
  std::vector<ServiceStatus> services;
};

/** @returns the text that `readProcessStatus` reads: one object of JSON, without a line end. */
std::string writeProcessStatus(const ProcessStatus& status);

/** @throws std::runtime_error when it is no such text. */
ProcessStatus readProcessStatus(const std::string& text);

}  // namespace zerva
