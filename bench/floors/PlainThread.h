#pragma once

#include <pthread.h>

#include <cstddef>

namespace zerva::bench {

/** A thread as the system gives it, with a stack of the platform's size; nothing else. */
class PlainThread {
 public:
  using Body = void (*)(void*);

  /** @throws std::runtime_error when it cannot be made. */
  PlainThread(Body body, void* argument);
  PlainThread(const PlainThread&) = delete;
  PlainThread& operator=(const PlainThread&) = delete;

  void join();

 private:
  static void* run(void* self);

  const Body body_;
  void* const argument_;
  pthread_t thread_{};
};

}  // namespace zerva::bench
