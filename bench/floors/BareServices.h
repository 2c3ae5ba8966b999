#pragma once

#include <deque>
#include <memory>
#include <string>

#include "bench/floors/Futex.h"
#include "bench/floors/PlainThread.h"
#include "bench/floors/Receiver.h"

class Service;

namespace zerva::bench {

/** What of a life a floor has. */
struct BareParts {
  bool library = true;
  bool message = true;
};

/**
 * Services brought up by hand, with nothing that is not needed: open, resolve, create, a thread
 * that sleeps, and a message to another thread that tells of it.
 */
class BareServices {
 public:
  explicit BareServices(BareParts parts) : parts_(parts) {}

  /** @param path of the library. @throws std::runtime_error when it cannot be done. */
  void bringUp(const std::string& path, const std::string& announcement);

  /** Waits until what was announced has arrived. */
  void awaitAnnouncements() { registry_.awaitAll(); }

  /** Wakes and joins each thread, deletes the service and closes its library, in order. */
  void takeDown();

 private:
  struct One {
    ~One() = default;
    Word over{0};
    void* library = nullptr;
    Service* service = nullptr;
    std::unique_ptr<PlainThread> thread;
  };

  static void sleep(void* one);

  const BareParts parts_;
  Receiver registry_;
  std::deque<One> all_;
};

}  // namespace zerva::bench
