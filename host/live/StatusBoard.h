#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "host/live/ProcessStatus.h"

namespace zerva {

/**
 * What is known of a process and its services at this moment, as those tell it who see it happen.
 * A row stands for one service and is known by its place. Any thread may call any operation; none
 * waits for anything.
 */
class StatusBoard {
 public:
  using Clock = std::chrono::steady_clock;
  using Place = std::size_t;

  StatusBoard();

  /** What the process does as a whole from now on. @param name as in `ProcessStatus`. */
  void enter(const std::string& phase);

  /** What the process waits for before it starts; empty for nothing. */
  void awaits(const std::string& what);

  /** Enters the services of a file, as far as it can be read, as those whose line is to come. */
  void expect(const std::string& file);

  /** The line of a service has come, and it is being made. @returns its row. */
  Place begins(const ServiceStatus& service);

  /** The line of a lazy service has come. */
  void isLazy(const ServiceStatus& service);

  /**
   * The lazy service of a channel is being made.
   *
   * @returns its row, or nothing when several have this channel.
   */
  std::optional<Place> lazyBegins(const std::string& channel);

  /** A lazy service is made and recorded. @returns its row, or nothing when none fits. */
  std::optional<Place> lazyRecorded(const std::string& channel, const std::string& interfaces);

  /** What the making of a service is about from now on. */
  void advances(Place place, const std::string& doing);

  /** A service was recorded; fields that are empty are not known better than before. */
  void recorded(Place place, const std::string& type, const std::string& mode);

  void isUp(Place place, std::chrono::milliseconds init);
  void failed(Place place, const std::string& why);

  /**
   * A lazy service failed before it was known which one it is: the first one that fits.
   *
   * @param known its channel, library and creator, as far as they are known.
   */
  void lazyFailed(const ServiceStatus& known, const std::string& why);

  /** The file is through: what still waits for its line did not come up. */
  void startEnds();

  /** All services were deleted. */
  void deleted();

  /** @returns all that is known, in the order of the lines, without the executors' counters. */
  ProcessStatus read() const;

 private:
  struct Row {
    ServiceStatus service;
    Clock::time_point since;
  };

  std::optional<Place> find(const std::function<bool(const ServiceStatus&)>& fits) const;
  Place placeOf(const ServiceStatus& service);
  void become(Place place, ServiceState state);

  const Clock::time_point began_;
  mutable std::mutex mutex_;
  // Guarded by mutex_.
  std::string file_;
  std::string phase_ = "waiting";
  std::string awaits_;
  std::vector<Row> rows_;
};

}  // namespace zerva
