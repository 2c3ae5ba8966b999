#include "bench/floors/FutexPing.h"

namespace zerva::bench {

FutexPing::FutexPing(bool spinning) : spinning_(spinning), thread_(&FutexPing::run, this) {}

FutexPing::~FutexPing() {
  over_ = 1;
  hand(asked_);
  thread_.join();
}

FutexPing::Payload FutexPing::call(const Payload& payload) {
  const std::uint32_t before = answered_;
  there_ = payload;
  hand(asked_);
  awaitNot(answered_, before);
  return back_;
}

void FutexPing::run(void* self) { static_cast<FutexPing*>(self)->answer(); }

void FutexPing::answer() {
  for (std::uint32_t seen = 0;; ++seen) {
    awaitNot(asked_, seen);
    if (over_ != 0) return;
    back_ = there_;
    hand(answered_);
  }
}

void FutexPing::awaitNot(Word& word, std::uint32_t value) const {
  while (word.load(std::memory_order_acquire) == value) {
    if (!spinning_) sleepWhile(word, value);
  }
}

void FutexPing::hand(Word& word) {
  word.fetch_add(1, std::memory_order_release);
  if (!spinning_) wakeOne(word);
}

}  // namespace zerva::bench
