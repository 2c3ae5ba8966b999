#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "framework/Export.h"
#include "runtime/libClientUtils/Description.h"

namespace zerva {

/**
 * Says, while it lives, what the calling thread waits for, so that a host that hangs can name it.
 * Where it is made of what is there already, it takes no memory: there is one for each thread that
 * ends.
 */
class ZERVA_EXPORT Waiting {
 public:
  /** @param what a phrase that completes "waits for". */
  explicit Waiting(std::string what);

  /**
   * @param what as above; not copied.
   * @param whose what the phrase ends with.
   */
  Waiting(const char* what, std::shared_ptr<const Description> whose);

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
  void begin();
  std::string text() const;

  const std::string phrase_;
  const char* const what_;
  const std::shared_ptr<const Description> whose_;
  // Its place among all waits, guarded by their mutex.
  Waiting* before_ = nullptr;
  Waiting* next_ = nullptr;
};

}  // namespace zerva
