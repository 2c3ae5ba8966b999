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

/**
 * Which lines are on, and for whom. One object a process, never destroyed. Any thread may call any
 * operation; none blocks for longer than another one of them takes.
 */
class LogConfiguration {
 public:
  /** Who gets a line. */
  struct Receivers {
    bool ordinary;
    std::vector<std::shared_ptr<SuppliedSink>> supplied;
  };

  static LogConfiguration& instance();

  /**
   * Whether anybody wants a level of a module. Nothing but a relaxed read when nobody wants it of
   * any module; else one more, and the lock only when this thread has not asked for the module
   * since the last change. A change counts for every question that comes after it.
   */
  static bool isOn(const char* module, int level) {
    return level <= highest_.load(std::memory_order_relaxed) && isOnFor(module, level);
  }

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

  static bool isOnFor(const char* module, int level);
  bool lookUp(const char* module, int level) const;
  int ordinaryLevel(std::string_view module) const;
  int highestLevel(std::string_view module) const;
  void changed();

  // Read without the lock, written under it.
  static std::atomic<int> highest_;
  static std::atomic<unsigned> generation_;  // of the answers that threads keep

  mutable std::shared_mutex mutex_;
  // Guarded by mutex_.
  int defaultLevel_ = kDefaultLevel;
  std::map<std::string, int, std::less<>> levels_;
  std::vector<std::shared_ptr<SuppliedSink>> sinks_;
  std::vector<std::shared_ptr<SuppliedSink>> leaving_;  // taken out and not yet closed
};

}  // namespace zerva
