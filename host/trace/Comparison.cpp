#include "host/trace/Comparison.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "host/trace/DurationText.h"

namespace zerva {
namespace {

std::optional<std::int64_t> timeOf(const ServiceRun& service) {
  const Interval making = service.comingUp();
  // Of one whose events are missing there may be nothing to tell how long it took.
  if (!service.up || making.end == 0) return std::nullopt;
  return making.length();
}

bool isSlower(std::int64_t before, std::int64_t after, const ComparisonLimits& limits) {
  const auto allowed = static_cast<double>(before) * (1 + limits.percent / 100);
  return after - before > limits.noise && static_cast<double>(after) > allowed;
}

bool hasFailed(const ServiceRun& service) { return !service.isLazy() || !service.error.empty(); }

/** Of the services of a name, each in its turn. */
class Turns {
 public:
  std::size_t next(const std::string& name) { return turns_[name]++; }

 private:
  std::map<std::string, std::size_t> turns_;
};

class Comparer {
 public:
  Comparer(const RunModel& before, const RunModel& after, const ComparisonLimits& limits)
      : before_(before), after_(after) {
    all_.limits = limits;
    all_.finished = after.running;
    all_.lostBefore = before.lost;
    all_.lostAfter = after.lost;
  }

  Comparison compare() {
    const std::int64_t was = before_.start.length();
    const std::int64_t is = after_.start.length();
    add({"", was, is, isSlower(was, is, all_.limits)});
    Turns after;
    for (const ServiceRun& service : after_.services) {
      add(compared(before_.find(service.name, after.next(service.name)), service));
    }
    Turns before;
    for (const ServiceRun& service : before_.services) {
      if (after_.find(service.name, before.next(service.name)) != nullptr) continue;
      ComparedTime time{service.name, timeOf(service), std::nullopt};
      if (time.before) missing(time, true);
      add(time);
    }
    return std::move(all_);
  }

 private:
  void add(const ComparedTime& time) { all_.times.push_back(time); }

  ComparedTime compared(const ServiceRun* before, const ServiceRun& after) const {
    ComparedTime time{after.name, std::nullopt, timeOf(after)};
    if (before == nullptr) return time;
    time.before = timeOf(*before);
    if (!time.before) return time;
    if (time.after) {
      time.regressed = isSlower(*time.before, *time.after, all_.limits);
    } else {
      // A lazy one that nobody asked for this time has not failed.
      missing(time, hasFailed(after));
    }
    return time;
  }

  void missing(ComparedTime& time, bool failed) const {
    time.unknown = after_.lost > 0;
    time.regressed = failed && !time.unknown;
  }

  const RunModel& before_;
  const RunModel& after_;
  Comparison all_;
};

void requireComparable(const RunModel& before, const RunModel& after) {
  if (!before.running) {
    throw std::invalid_argument(before.trace + ": error: the start was not over when it ended");
  }
  if (!after.running && after.lost > 0) {
    throw std::invalid_argument(after.trace + ": error: the start does not end, and " +
                                std::to_string(after.lost) + " events are missing");
  }
}

std::string lossText(const std::string& which, std::int64_t lost) {
  if (lost == 0) return "";
  return std::to_string(lost) + " events are missing " + which +
         ": what is not there for that is not judged\n";
}

std::string textOf(const std::optional<std::int64_t>& time) {
  return time ? durationText(*time) : "-";
}

std::string changeText(const ComparedTime& time) {
  if (!time.before || !time.after) return "";
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%+.1f %%", time.change());
  return text.data();
}

std::string remarkOf(const ComparedTime& time) {
  if (time.unknown) return "not known";
  if (time.regressed) return time.after ? "slower" : "does not come up any more";
  if (!time.before && time.after) return "new";
  if (time.before && !time.after) return "not there, or not made";
  return "";
}

}  // namespace

double ComparedTime::change() const {
  if (!before || !after || *before == 0) return 0;
  return 100.0 * static_cast<double>(*after - *before) / static_cast<double>(*before);
}

bool Comparison::regressed() const {
  return !finished || std::any_of(times.begin(), times.end(),
                                  [](const ComparedTime& time) { return time.regressed; });
}

Comparison compareStarts(const RunModel& before, const RunModel& after, ComparisonLimits limits) {
  requireComparable(before, after);
  return Comparer(before, after, limits).compare();
}

std::string comparisonText(const Comparison& comparison) {
  std::size_t widest = 15;
  for (const ComparedTime& time : comparison.times) widest = std::max(widest, time.name.size());
  std::string text;
  const auto row = [&](const std::string& name, const std::string& before, const std::string& after,
                       const std::string& change, const std::string& remark) {
    std::string line = name + std::string(widest + 1 - name.size(), ' ');
    for (const std::string& cell : {before, after, change}) {
      line += std::string(cell.size() < 11 ? 11 - cell.size() : 1, ' ') + cell;
    }
    line += "  " + remark;
    text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
  };
  row("", "before", "after", "change", "");
  for (const ComparedTime& time : comparison.times) {
    row(time.name.empty() ? "the whole start" : time.name, textOf(time.before), textOf(time.after),
        changeText(time), remarkOf(time));
  }
  text += lossText("before", comparison.lostBefore) + lossText("after", comparison.lostAfter);
  if (!comparison.finished) return text + "The second start was not over when its trace ended\n";
  std::array<char, 128> verdict{};
  std::snprintf(verdict.data(), verdict.size(), "%s slower by more than %g %% and %s\n",
                comparison.regressed() ? "Something became" : "Nothing became",
                comparison.limits.percent, durationText(comparison.limits.noise).c_str());
  return text + verdict.data();
}

std::string comparisonJson(const Comparison& comparison) {
  using Json = nlohmann::ordered_json;
  const auto number = [](const std::optional<std::int64_t>& time) {
    return time ? Json(*time) : Json(nullptr);
  };
  Json times = Json::array();
  for (const ComparedTime& time : comparison.times) {
    Json one = {{"service", time.name.empty() ? Json(nullptr) : Json(time.name)},
                {"before", number(time.before)},
                {"after", number(time.after)},
                {"regressed", time.regressed},
                {"unknown", time.unknown}};
    times.push_back(one);
  }
  const Json json = {{"max_regress_percent", comparison.limits.percent},
                     {"noise", comparison.limits.noise},
                     {"regressed", comparison.regressed()},
                     {"finished", comparison.finished},
                     {"lost", {{"before", comparison.lostBefore}, {"after", comparison.lostAfter}}},
                     {"times", times}};
  return json.dump(2) + "\n";
}

}  // namespace zerva
