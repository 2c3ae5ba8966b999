#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/libLoggingHandler/SuppliedSink.h"

namespace zerva {

/** Which lines are on, and for whom. One object a process, never destroyed. */
class LogConfiguration {
 public:
  /** Who gets a line. */
  struct Receivers {
    bool ordinary;
    std::vector<std::shared_ptr<SuppliedSink>> supplied;
  };

  static LogConfiguration& instance();

  /** Whether anybody may want a level, whatever the module: one relaxed read. */
  static bool mayBeOn(int level) { return level <= highest_.load(std::memory_order_relaxed); }

  bool isOn(std::string_view module, int level) const;
  Receivers receivers(std::string_view module, int level) const;

  void setDefaultLevel(int level);
  void setLevel(const std::string& module, int level);
  void add(std::shared_ptr<SuppliedSink> sink);

  /**
   * @returns the additions of the sink that were taken out, also those that another thread is
   * taking out at this moment: the sink is not gone before they are closed.
   */
  std::vector<std::shared_ptr<SuppliedSink>> remove(const LogSink& sink);

  /** Additions that were taken out are closed. */
  void forget(const std::vector<std::shared_ptr<SuppliedSink>>& removed);

 private:
  static constexpr int kDefaultLevel = 4;

  int ordinaryLevel(std::string_view module) const;
  void updateHighest();

  static std::atomic<int> highest_;

  mutable std::shared_mutex mutex_;
  // Guarded by mutex_.
  int defaultLevel_ = kDefaultLevel;
  std::map<std::string, int, std::less<>> levels_;
  std::vector<std::shared_ptr<SuppliedSink>> sinks_;
  std::vector<std::shared_ptr<SuppliedSink>> leaving_;  // taken out and not yet closed
};

}  // namespace zerva
