#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace zerva {

/**
 * How many young tasks of a pool may run beside each other: as many as there are processors, and
 * more while those that run keep others waiting. Whoever uses it keeps threads from each other.
 */
class StartLimit {
 public:
  /** @param most never more than that. */
  StartLimit(std::size_t processors, std::size_t most)
      : most_(most), processors_(processors), tasks_(processors) {}

  std::size_t tasks() const { return tasks_; }

  /** @returns whether more may run than there are processors. */
  bool isRaised() const { return tasks_ > processors_; }

  void setProcessors(std::size_t processors) {
    processors_ = processors;
    tasks_ = std::max(tasks_, processors);
  }

  /** No task waits any more. */
  void reset() { tasks_ = processors_; }

  /**
   * Somebody looked, and tasks wait. They are numbered in the order in which they came.
   *
   * @param stuck whether tasks have become old.
   * @param first the task that waits longest.
   * @param last the one that came last.
   */
  void look(bool stuck, std::uint64_t first, std::uint64_t last) {
    if (stuck) tasks_ = std::min(tasks_ * kRaisedWhenStuck, most_);
    if (++looks_ % kLooksBetweenMarks != 0) return;
    // Those that run get on, and yet it waits: for many that sleep, each for a little.
    if (first <= mark_) tasks_ = std::min(tasks_ * 2, most_);
    mark_ = last;
  }

 private:
  static constexpr std::size_t kRaisedWhenStuck = 8;
  static constexpr unsigned kLooksBetweenMarks = 4;

  const std::size_t most_;
  std::size_t processors_;
  std::size_t tasks_;
  std::uint64_t mark_ = 0;  // the last task that there was some looks ago
  unsigned looks_ = 0;
};

}  // namespace zerva
