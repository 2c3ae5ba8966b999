#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/trace/RunModel.h"

namespace zerva {

/** What is known of one process when it is drawn who called whom. */
struct GraphSource {
  /** A service that a line of its file declares. */
  struct Service {
    /** Its channel; the first interface of a legacy service. */
    std::string name;
    /** Interface names separated by blanks. */
    std::string interfaces;
    /** Whether others can reach it; not so for a legacy service. */
    bool hasChannel = true;
  };

  /** What the process is called, for people. */
  std::string name;
  std::int64_t pid = 0;
  /** Whether anything is known of it but the channels. */
  bool lookedAt = true;
  std::vector<Service> services;
  /** What it serves, as far as that is known, declared or not. */
  std::vector<std::string> channels;
  std::vector<CallRun> calls;
  /** How many events are missing. */
  std::int64_t lost = 0;
  /** How many calls more there were that could not be told apart, and how many of them failed. */
  std::uint64_t others = 0;
  std::uint64_t failedOthers = 0;
};

/** @returns what a trace tells. */
GraphSource graphSourceOf(const RunModel& run);

}  // namespace zerva
