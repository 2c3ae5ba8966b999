#include "host/trace/Panels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "host/trace/DurationText.h"

namespace zerva {
namespace {

constexpr double kStartWidth = 620;
constexpr double kLaterWidth = 110;
constexpr double kStopWidth = 170;
constexpr double kBetween = 16;
constexpr std::size_t kMostLater = 4;

/** What was made after the start, by time. */
std::vector<Interval> laterOf(const RunModel& run) {
  std::vector<Interval> later;
  for (const ServiceRun& service : run.services) {
    for (const StageRun& stage : service.stages) {
      const bool down = stage.stage == Stage::Stop || stage.stage == Stage::Deletion;
      if (!down && stage.when.begin > run.start.end) later.push_back(stage.when);
    }
  }
  std::sort(later.begin(), later.end(),
            [](const Interval& one, const Interval& other) { return one.begin < other.begin; });
  return later;
}

std::int64_t gapBefore(const std::vector<Interval>& all, std::size_t place) {
  return all[place].begin - all[place - 1].end;
}

void join(std::vector<Interval>& all, std::size_t place) {
  all[place - 1].end = std::max(all[place - 1].end, all[place].end);
  all.erase(all.begin() + static_cast<std::ptrdiff_t>(place));
}

/** Joins what belongs together, and then what is closest, until there are few. */
std::vector<Interval> clustersOf(std::vector<Interval> all) {
  for (std::size_t place = 1; place < all.size();) {
    const std::int64_t longest = std::max(all[place].length(), all[place - 1].length());
    if (gapBefore(all, place) <= longest) {
      join(all, place);
    } else {
      ++place;
    }
  }
  while (all.size() > kMostLater) {
    std::size_t closest = 1;
    for (std::size_t place = 2; place < all.size(); ++place) {
      if (gapBefore(all, place) < gapBefore(all, closest)) closest = place;
    }
    join(all, closest);
  }
  return all;
}

/** A tick's text: without needless zeros, in a unit that needs one decimal at most. */
std::string tickText(std::int64_t at, std::int64_t step) {
  struct Unit {
    std::int64_t size;
    const char* name;
  };
  constexpr std::array units = {Unit{1'000'000'000, "s"}, Unit{1'000'000, "ms"}, Unit{1000, "us"},
                                Unit{1, "ns"}};
  if (at == 0) return "0";
  const auto* unit = units.begin();
  while (step * 10 < unit->size && unit + 1 != units.end()) ++unit;
  std::string text = std::to_string(at / unit->size);
  if (const std::int64_t tenths = at % unit->size * 10 / unit->size; tenths > 0) {
    text += "." + std::to_string(tenths);
  }
  return text + " " + unit->name;
}

}  // namespace

double Panel::place(std::int64_t t) const {
  if (when.length() <= 0) return x;
  const double share = static_cast<double>(t - when.begin) / static_cast<double>(when.length());
  return x + width * std::clamp(share, 0.0, 1.0);
}

std::vector<Panel> panelsOf(const RunModel& run, double x) {
  std::vector<Panel> panels;
  const auto add = [&](Panel::Kind kind, const std::string& title, Interval when, double width) {
    panels.push_back({kind, title, when, x, width});
    x += width + kBetween;
  };
  add(Panel::Kind::Start, "Start: " + durationText(run.start.length()), run.start, kStartWidth);
  for (Interval later : clustersOf(laterOf(run))) {
    const std::string title = "+ " + durationText(later.begin - run.start.end);
    const std::int64_t margin = std::max<std::int64_t>(1, later.length() / 20);
    later = {later.begin - margin, later.end + margin};
    add(Panel::Kind::Later, title, later, kLaterWidth);
  }
  if (run.stop) {
    add(Panel::Kind::Stop, "Stop: " + durationText(run.stop->length()), *run.stop, kStopWidth);
  }
  return panels;
}

std::vector<Tick> ticksOf(const Panel& panel) {
  constexpr double closest = 58;
  const std::int64_t length = panel.when.length();
  if (length <= 0) return {};
  const double least = static_cast<double>(length) * closest / panel.width;
  std::int64_t step = 1;
  constexpr std::array factors = {2, 5, 10};
  std::int64_t decade = 1;
  while (static_cast<double>(step) < least) {
    for (const int factor : factors) {
      step = decade * factor;
      if (static_cast<double>(step) >= least) break;
    }
    decade *= 10;
  }
  std::vector<Tick> ticks;
  for (std::int64_t at = 0; at <= length; at += step) {
    ticks.push_back({panel.when.begin + at, tickText(at, step)});
  }
  return ticks;
}

}  // namespace zerva
