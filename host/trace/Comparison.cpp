#include "host/trace/Comparison.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "host/trace/DurationText.h"

namespace zerva {
namespace {

std::optional<std::int64_t> timeOf(const ServiceRun& service) {
  if (!service.up) return std::nullopt;
  return service.comingUp().length();
}

bool isSlower(std::int64_t before, std::int64_t after, const ComparisonLimits& limits) {
  const auto allowed = static_cast<double>(before) * (1 + limits.percent / 100);
  return after - before > limits.noise && static_cast<double>(after) > allowed;
}

ComparedTime compare(const ServiceRun* before, const ServiceRun& after,
                     const ComparisonLimits& limits) {
  ComparedTime time{after.name, std::nullopt, timeOf(after), false};
  if (before == nullptr) return time;
  time.before = timeOf(*before);
  if (!time.before) return time;
  // A lazy one that nobody asked for this time has not failed.
  time.regressed = time.after ? isSlower(*time.before, *time.after, limits)
                              : !after.isLazy() || !after.error.empty();
  return time;
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
  return std::any_of(times.begin(), times.end(),
                     [](const ComparedTime& time) { return time.regressed; });
}

Comparison compareStarts(const RunModel& before, const RunModel& after, ComparisonLimits limits) {
  Comparison comparison{limits, {}};
  const std::int64_t was = before.start.length();
  const std::int64_t is = after.start.length();
  comparison.times.push_back({"", was, is, isSlower(was, is, limits)});
  for (const ServiceRun& service : after.services) {
    comparison.times.push_back(compare(before.find(service.name), service, limits));
  }
  for (const ServiceRun& service : before.services) {
    if (after.find(service.name) != nullptr) continue;
    comparison.times.push_back({service.name, timeOf(service), std::nullopt, false});
  }
  return comparison;
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
                {"regressed", time.regressed}};
    times.push_back(one);
  }
  const Json json = {{"max_regress_percent", comparison.limits.percent},
                     {"noise", comparison.limits.noise},
                     {"regressed", comparison.regressed()},
                     {"times", times}};
  return json.dump(2) + "\n";
}

}  // namespace zerva
