#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zerva {

/** What is done for a service, or what it does. */
enum class Stage {
  /** Its library is opened and its creator looked up. */
  Library,
  Creator,
  /** Its channel and executor are made, and it is recorded. */
  Executor,
  /** The registry is told of it. */
  Announcement,
  Init,
  Stop,
  Deletion
};

/** @returns the name of a stage, for people. */
const char* nameOf(Stage stage);

/** Nanoseconds of the monotonic clock. */
struct Interval {
  std::int64_t begin = 0;
  std::int64_t end = 0;

  std::int64_t length() const { return end - begin; }
};

struct StageRun {
  Stage stage = Stage::Library;
  Interval when;
  int thread = 0;
};

/** A time in which a service's thread waited for somebody else. */
struct WaitRun {
  Interval when;
  int thread = 0;
  /** Completes "waited for". */
  std::string what;
  /** The channel that it waited for; empty for something else. */
  std::string channel;
};

/** What became of a service. */
struct ServiceRun {
  /** Its channel; the first interface of a legacy service. */
  std::string name;
  std::string interfaces;
  std::string library;
  std::string type;
  /** "immediate", "lazy" or "legacy". */
  std::string kind;
  /** "MT" or "ST"; empty for a legacy service. */
  std::string mode;
  /** When its line was begun. */
  std::int64_t declared = 0;
  /** In the order of time. */
  std::vector<StageRun> stages;
  std::vector<WaitRun> waits;
  std::optional<std::int64_t> firstRequest;
  std::string firstCaller;
  /** When its `init` was over, for the one that needed longest. */
  std::optional<std::int64_t> up;
  /** Why it did not come up. */
  std::string error;

  /** @returns from the first to the last thing that was done to bring it up; 0 when there is none.
   */
  Interval comingUp() const;
  /** @returns how long a stage took, all its parts together. */
  std::int64_t total(Stage stage) const;
  /** @returns how long it waited while it came up; what overlaps counts once. */
  std::int64_t waited() const;
  bool isLazy() const { return kind == "lazy"; }
};

/** All calls from one to another, by one method. */
struct CallRun {
  /** For which service; empty for nobody in particular. */
  std::string caller;
  std::string channel;
  std::string interface;
  std::string method;
  std::uint64_t count = 0;
  std::uint64_t failures = 0;
  std::map<std::int64_t, std::uint64_t> times;
};

/** A started program. */
struct ProcessRun {
  std::string program;
  std::int64_t pid = 0;
  std::int64_t at = 0;
};

/** What a trace tells of a process. */
struct RunModel {
  /** The trace's file. */
  std::string trace;
  /** The directive file. */
  std::string file;
  std::int64_t pid = 0;
  std::int64_t bits = 0;
  /** From the first to the last line. */
  Interval whole;
  /** From the first directive to the last one's end; to the end of the trace for one cut off. */
  Interval start;
  /** Whether the trace tells that the start was over. */
  bool running = false;
  /** From the request to stop to the end; nothing when the trace does not reach as far. */
  std::optional<Interval> stop;
  /** The thread that does what the file says. */
  int hostThread = 0;
  /** In the order of the file. */
  std::vector<ServiceRun> services;
  /** What the host does itself, and waits for: records, programs, the end of others. */
  ServiceRun host;
  std::vector<CallRun> calls;
  std::vector<ProcessRun> processes;
  /** Lines of the file that came to nothing, apart from those of services. */
  std::vector<std::string> failures;
  /** Events for which there was no room. */
  std::int64_t lost = 0;

  /**
   * @param occurrence of several with the name, in the order of the file: 0 for the first.
   * @returns null when there is none.
   */
  const ServiceRun* find(const std::string& name, std::size_t occurrence = 0) const;
};

}  // namespace zerva
