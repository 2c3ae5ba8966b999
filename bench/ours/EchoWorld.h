#pragma once

#include <string>

#include "bench/ours/Libraries.h"
#include "bench/ours/World.h"

namespace zerva::bench {

/** A world with one service that answers. */
class EchoWorld {
 public:
  /** @param mode "MT" or "ST". */
  explicit EchoWorld(const std::string& mode, WorldParts parts = {}) : world(parts) {
    makeCopies(1);
    world.process(accessLines(1) + serviceLine("service_instance: " + mode, copyName(0), 0));
  }

  Echo& echo() { return world.find(interfaceName(0)); }

  World world;
};

/** As long as the payload of a call is. */
constexpr std::size_t kSmallPayload = 64;

}  // namespace zerva::bench
