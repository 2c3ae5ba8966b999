#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace zerva {

/** A log level as it was asked for. */
struct LogLevel {
  /** The module that it is for; empty for all that have no level of their own. */
  std::string module;
  int level;
};

/** A channel that has to be served before the start. */
struct AwaitedChannel {
  std::string name;
  std::chrono::milliseconds longest;
};

/** What `zerva run` was asked to do. */
struct RunOptions {
  /** The directive file. */
  std::string file;
  /** What a host that started this one appended; shown, otherwise without effect. */
  std::string version;
  /** How long to run; nothing: until a signal comes. */
  std::optional<std::chrono::milliseconds> duration;
  std::vector<LogLevel> logLevels;
  /** Where the log goes besides standard error; empty for nowhere. */
  std::string logFile;
  /** Where what happens is written; empty for where the environment says, if anywhere. */
  std::string trace;
  /** Whether the process tells others how it is. */
  bool status = false;
  /** Where libraries without a slash in their name are searched first; empty for the default. */
  std::vector<std::string> libraryDirectories;
  /** The directory of the bus; empty for that of the environment or a new one. */
  std::string bus;
  /** What is waited for, in this order. */
  std::vector<AwaitedChannel> awaited;
  /** Whether the file is looked over first. */
  bool check = true;
  /** How long the stop waits for requests under way, and for started processes to end. */
  std::chrono::milliseconds stopTimeout{10000};
  /** How long a request waits for its answer; nothing: the platform's default. */
  std::optional<std::chrono::milliseconds> replyTimeout;
};

}  // namespace zerva
