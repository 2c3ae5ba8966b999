#pragma once

#include <array>

#include "bench/floors/Futex.h"
#include "bench/floors/PlainThread.h"

namespace zerva::bench {

/**
 * Two threads that hand 64 bytes to and fro: the least that a call between threads can cost. One
 * thread uses it.
 */
class FutexPing {
 public:
  static constexpr std::size_t kSize = 64;
  using Payload = std::array<char, kSize>;

  /** @param spinning whether both wait with a processor of their own instead of asleep. */
  explicit FutexPing(bool spinning = false);
  ~FutexPing();
  FutexPing(const FutexPing&) = delete;
  FutexPing& operator=(const FutexPing&) = delete;

  /** There and back once. */
  Payload call(const Payload& payload);

 private:
  static void run(void* self);
  void answer();
  void awaitNot(Word& word, std::uint32_t value) const;
  void hand(Word& word);

  const bool spinning_;
  Word asked_{0};
  Word answered_{0};
  Word over_{0};
  Payload there_{};
  Payload back_{};
  PlainThread thread_;
};

}  // namespace zerva::bench
