#pragma once

#include <string>
#include <vector>

#include "host/trace/RunModel.h"

namespace zerva {

/** A part of a run's time, drawn to a scale of its own. */
struct Panel {
  enum class Kind { Start, Later, Stop };

  Kind kind = Kind::Start;
  std::string title;
  Interval when;
  /** Pixels. */
  double x = 0;
  double width = 0;

  /** @returns where a time is drawn; at the edge when it is outside. */
  double place(std::int64_t t) const;
  bool shows(const Interval& interval) const {
    return interval.end >= when.begin && interval.begin <= when.end;
  }
};

/** A time on a panel's axis. */
struct Tick {
  std::int64_t at = 0;
  std::string text;
};

/**
 * @returns the parts of a run in which services come up or go down: the start, what is made later
 *     because it is first asked for then, and the stop. Hours of running between them are left out.
 */
std::vector<Panel> panelsOf(const RunModel& run, double x);

/** @returns the ticks of a panel's axis, at times since its beginning, not closer than need be. */
std::vector<Tick> ticksOf(const Panel& panel);

}  // namespace zerva
