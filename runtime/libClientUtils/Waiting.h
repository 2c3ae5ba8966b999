#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "framework/Export.h"
#include "runtime/libClientUtils/Description.h"

namespace zerva {

/**
 * Says, while it lives, what the calling thread waits for, so that a host that hangs can name it.
 */
class ZERVA_EXPORT Waiting {
 public:
  /** @param what a phrase that completes "waits for". */
  explicit Waiting(std::string what);

  /** @param whose what the phrase ends with. */
  Waiting(std::string what, Description whose);

  ~Waiting();
  Waiting(const Waiting&) = delete;
  Waiting& operator=(const Waiting&) = delete;

  /** @returns what the threads of the process wait for now, the wait that began first first. */
  static std::vector<std::string> all();

  /**
   * Notes which executor was told last to shut down; its service's `stop` comes next.
   *
   * @param executor tells it, if somebody asks: on any thread, until another one is noted, also
   *     when the executor is gone.
   */
  static void noteShutdown(std::function<std::string()> executor);

  /** @returns what `noteShutdown` noted last; empty when nothing was. */
  static std::string lastShutdown();

 private:
  void begin(std::string what, std::optional<Description> whose);
};

}  // namespace zerva
