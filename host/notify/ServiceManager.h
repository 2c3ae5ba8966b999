#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "host/notify/ManagerEnvironment.h"
#include "host/notify/NotifySocket.h"

namespace zerva {

/**
 * Tells the service manager that started this process, if one did, how the host is: what it waits
 * for while it starts and stops, when everything is up, and that its executors answer. A thread of
 * its own does that; there is none when there is no manager.
 *
 * Any thread may call any operation.
 */
class ServiceManager {
 public:
  /**
   * @param environment what the manager told.
   * @param waitsFor what the host waits for now; called on the thread of this object, until it is
   *     destroyed. Empty when that is not known.
   */
  ServiceManager(const ManagerEnvironment& environment, std::function<std::string()> waitsFor);
  ~ServiceManager();
  ServiceManager(const ServiceManager&) = delete;
  ServiceManager& operator=(const ServiceManager&) = delete;

  /** The host waits for something of which it does not know itself. @param what empty: no more. */
  void awaits(const std::string& what);

  /** Every directive is through. @param status what runs, for people. */
  void ready(const std::string& status);

  /** The host is going down. */
  void stopping();

 private:
  using Clock = std::chrono::steady_clock;

  /** What the host is doing. */
  enum class Phase { Starting, Running, Stopping };

  void watch();
  std::string awaited();
  void tellStatus(Phase phase);
  void tellStuck(const std::string& stuck);
  Clock::duration pause(Phase phase) const;

  const NotifySocket socket_;
  const std::optional<std::chrono::microseconds> watchdog_;
  const std::function<std::string()> waitsFor_;

  std::mutex mutex_;
  std::condition_variable changed_;
  // Guarded by mutex_.
  Phase phase_ = Phase::Starting;
  std::string running_;  // the status while it runs
  std::string awaited_;
  bool over_ = false;

  // Of the thread alone.
  std::string told_;
  std::string toldStuck_;

  std::thread thread_;
};

}  // namespace zerva
