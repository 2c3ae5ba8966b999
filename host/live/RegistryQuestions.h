#pragma once

#include <optional>
#include <string>

#include "framework/CommsChannel.h"

namespace zerva {

/** Asks the registry of a bus, by the texts that it understands. Used by one thread. */
class RegistryQuestions {
 public:
  /** @param from the channel to ask from; not owned. */
  explicit RegistryQuestions(CommsChannel& from) : from_(from) {}

  /** @returns whether there is one. */
  bool isThere();

  /**
   * @returns the channel on which an interface is served, or nothing when that is not known.
   * @throws std::runtime_error when the registry does not answer; so below.
   */
  std::optional<std::string> findChannel(const std::string& interface);

  /** @returns whether an invoker of the interface is recorded for a protocol. */
  bool hasInvoker(const std::string& interface, const std::string& protocol);

 private:
  std::optional<std::string> ask(const std::string& question, const std::string& word);

  CommsChannel& from_;
};

}  // namespace zerva
