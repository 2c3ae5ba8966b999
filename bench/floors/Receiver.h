#pragma once

#include <cstddef>
#include <string>

#include "bench/floors/NaiveChannel.h"
#include "bench/floors/PlainThread.h"

namespace zerva::bench {

/** A thread that takes messages from a channel and throws them away. */
class Receiver {
 public:
  Receiver();
  ~Receiver();
  Receiver(const Receiver&) = delete;
  Receiver& operator=(const Receiver&) = delete;

  void put(std::string message) { channel_.put(std::move(message)); }

  /** Waits until all messages so far were taken. Called once, after the last. */
  void awaitAll();

 private:
  static void run(void* self);

  NaiveChannel channel_;
  PlainThread thread_;
  bool ended_ = false;
};

}  // namespace zerva::bench
