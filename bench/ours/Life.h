#pragma once

#include <string>

#include "bench/harness/Isolated.h"

namespace zerva::bench {

/** Services that are brought up and taken down together. */
struct LifePlan {
  /** The keyword of their directives, with the mode. */
  std::string keyword = "service_instance: ST";
  int services = 0;
  /** From how many libraries they come. */
  int libraries = 0;
  /** Whether look-ups and calls are measured in the middle, too. */
  bool used = false;
};

/** What a life gives, in this order; those for one service are the mean of all. */
enum LifeFigure : std::size_t {
  kBringUp,    // microseconds a service
  kTearDown,   // microseconds a service
  kResident,   // KiB a service, without the pages of the libraries
  kFirstFind,  // microseconds a look-up that makes the proxy
  kFind,       // nanoseconds a look-up of a proxy that is there
  kCall        // microseconds a call of 64 bytes
};

/** @returns the directives of the services. */
std::string linesOf(const LifePlan& plan);

/** Brings services up by directives, and takes them down, as a host does. */
Figures ourLife(const LifePlan& plan);

/** The same with all that `zerva run` adds: what it observes, logs and tells. Nothing is used. */
Figures hostLife(const LifePlan& plan);

/** The same with what the system alone offers. */
Figures bareLife(const LifePlan& plan);

/** @throws std::runtime_error when the loader still has one of the libraries. */
void expectUnmapped();

}  // namespace zerva::bench
