#pragma once

#include <cstddef>
#include <cstdint>

namespace zerva {

/**
 * Counts tasks that run, and tells apart those that have run for a while: since before the round
 * that went before. Whoever uses it says when a round is over, and keeps threads from each other.
 */
class RunningTasks {
 public:
  using Round = std::uint64_t;

  /** @returns what `end` is to be told of the task. */
  Round begin() {
    ++begun_;
    return round_;
  }

  void end(Round begun) {
    if (begun == round_) {
      --begun_;
    } else if (begun + 1 == round_) {
      --begunBefore_;
    } else {
      --old_;
    }
  }

  /** @returns whether tasks have become old by that. */
  bool nextRound() {
    const bool some = begunBefore_ > 0;
    old_ += begunBefore_;
    begunBefore_ = begun_;
    begun_ = 0;
    ++round_;
    return some;
  }

  std::size_t count() const { return begun_ + begunBefore_ + old_; }

  /** @returns how many are not old. */
  std::size_t young() const { return begun_ + begunBefore_; }

 private:
  Round round_ = 1;
  std::size_t begun_ = 0;        // in this round
  std::size_t begunBefore_ = 0;  // in the one before
  std::size_t old_ = 0;
};

}  // namespace zerva
