#include "runtime/libLoggingHandler/LogConfiguration.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <utility>

#include "runtime/libLoggingHandler/KnownLevels.h"

namespace zerva {
namespace {

// Errors are written without asking first, so a sink cannot have been what turned them on.
constexpr int kErrorLevel = 2;

}  // namespace

std::atomic<int> LogConfiguration::highest_{kDefaultLevel};
std::atomic<unsigned> LogConfiguration::generation_{1};

LogConfiguration& LogConfiguration::instance() {
  static auto* const configuration = new LogConfiguration;
  return *configuration;
}

bool LogConfiguration::isOnFor(const char* module, int level) {
  const unsigned generation = generation_.load(std::memory_order_relaxed);
  const auto known = KnownLevels::ofThisThread().find(module, generation);
  return known ? level <= *known : instance().lookUp(module, level);
}

LogConfiguration::Receivers LogConfiguration::receivers(std::string_view module, int level) const {
  const std::shared_lock lock(mutex_);
  Receivers receivers{true, {}};
  for (const auto& sink : sinks_) {
    if (sink->takes(module, level)) receivers.supplied.push_back(sink);
  }
  receivers.ordinary =
      level <= std::max(kErrorLevel, ordinaryLevel(module)) || receivers.supplied.empty();
  return receivers;
}

void LogConfiguration::setDefaultLevel(int level) {
  const std::lock_guard lock(mutex_);
  defaultLevel_ = level;
  changed();
}

void LogConfiguration::setLevel(const std::string& module, int level) {
  const std::lock_guard lock(mutex_);
  levels_[module] = level;
  changed();
}

void LogConfiguration::add(std::shared_ptr<SuppliedSink> sink) {
  const std::lock_guard lock(mutex_);
  sinks_.push_back(std::move(sink));
  changed();
}

std::vector<std::shared_ptr<SuppliedSink>> LogConfiguration::remove(const LogSink& sink) {
  const std::lock_guard lock(mutex_);
  const auto removed = std::stable_partition(
      sinks_.begin(), sinks_.end(), [&](const auto& supplied) { return !supplied->is(sink); });
  leaving_.insert(leaving_.end(), removed, sinks_.end());
  sinks_.erase(removed, sinks_.end());
  changed();
  std::vector<std::shared_ptr<SuppliedSink>> taken;
  std::copy_if(leaving_.begin(), leaving_.end(), std::back_inserter(taken),
               [&](const auto& supplied) { return supplied->is(sink); });
  return taken;
}

void LogConfiguration::forget(const std::vector<std::shared_ptr<SuppliedSink>>& removed) {
  const std::lock_guard lock(mutex_);
  leaving_.erase(std::remove_if(leaving_.begin(), leaving_.end(),
                                [&](const auto& supplied) {
                                  return std::find(removed.begin(), removed.end(), supplied) !=
                                         removed.end();
                                }),
                 leaving_.end());
}

bool LogConfiguration::lookUp(const char* module, int level) const {
  const std::shared_lock lock(mutex_);
  const int highest = highestLevel(module);
  // Under the lock, so that the level is one of this generation.
  const unsigned generation = generation_.load(std::memory_order_relaxed);
  KnownLevels::ofThisThread().keep(module, generation, highest);
  return level <= highest;
}

int LogConfiguration::ordinaryLevel(std::string_view module) const {
  const auto found = levels_.find(module);
  return found == levels_.end() ? defaultLevel_ : found->second;
}

int LogConfiguration::highestLevel(std::string_view module) const {
  int highest = ordinaryLevel(module);
  for (const auto& sink : sinks_) {
    if (sink->takes(module, sink->level())) highest = std::max(highest, sink->level());
  }
  return highest;
}

void LogConfiguration::changed() {
  int highest = defaultLevel_;
  for (const auto& [module, level] : levels_) highest = std::max(highest, level);
  for (const auto& sink : sinks_) highest = std::max(highest, sink->level());
  highest_.store(highest, std::memory_order_relaxed);
  generation_.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace zerva
