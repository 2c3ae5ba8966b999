#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/trace/RunModel.h"

namespace zerva {

/** What is worth an advice; nanoseconds. */
struct AdviceLimits {
  /** The least that a change has to save. */
  std::int64_t saving = 100'000;
  /** What is asked for within this time after the start is needed for it. */
  std::int64_t soon = 500'000'000;
};

/** A change to a line of a directive file. */
struct Advice {
  enum class Kind { MakeLazy, MakeImmediate };

  Kind kind = Kind::MakeLazy;
  /** The directive file. */
  std::string file;
  std::string service;
  /** What the start saves, or what the first caller would not wait for any more. */
  std::int64_t saving = 0;
  /** Why, in words. */
  std::string reason;
};

/**
 * Looks for services that could be lazy: immediate ones that nobody sent anything to in the time of
 * the start or soon after, and that called nobody themselves; and for lazy ones that should not be,
 * since they are needed in the start or soon after, and somebody waits for their making. Nothing is
 * said of a start that was cut off, and of what could be lazy only where no event is missing and
 * the trace reaches beyond `soon`.
 *
 * @param runs one for each process. @returns what saves most first.
 */
std::vector<Advice> adviceFor(const std::vector<RunModel>& runs, const AdviceLimits& limits);

std::string adviceText(const std::vector<Advice>& advice);
std::string adviceJson(const std::vector<Advice>& advice);

}  // namespace zerva
