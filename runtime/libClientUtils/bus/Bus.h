#pragma once

#include <memory>
#include <string>
#include <vector>

#include "framework/Export.h"

namespace zerva {

class BusCore;

/** A process of a bus. */
struct BusProcess {
  /** Its process id. */
  int id;
  /** The channels that it serves to others, in the order of their names. */
  std::vector<std::string> channels;
};

/**
 * Joins this process to the others of the same user and machine: as long as it lives, the channels
 * of each that are served can be reached from all of them by their names. There is nobody in the
 * middle; the processes find each other in a directory. When one of them ends, however it does,
 * only its own channels go with it.
 *
 * A process has one bus at a time. It is opened and closed by its host.
 */
class ZERVA_EXPORT Bus {
 public:
  /**
   * Opens the bus: what this process serves, now and later, is reached by others from here on.
   * Removes what processes that have ended have left in the directory.
   *
   * @param directory is made when it is missing, but not what is above it. It is the user's own and
   *     closed to others.
   * @throws std::runtime_error with directory and cause: it cannot be made or used, is somebody
   *     else's, a symbolic link, open to others or too long for the address of a socket; the
   * process has a bus already.
   */
  explicit Bus(const std::string& directory);

  /**
   * Ends all connections: requests that are outstanding here and there fail. Waits no longer than
   * half a second for others to read what was sent before.
   */
  ~Bus();
  Bus(const Bus&) = delete;
  Bus& operator=(const Bus&) = delete;

  /**
   * No channel of this process is served to others any more, and what they still ask fails.
   * Requests of this process, and answers to those that were taken before, go on. Does not wait.
   * Any thread; may be repeated.
   *
   * @param but the one channel that others still reach, until the bus is closed; empty for none.
   *     What the first call says holds.
   */
  void closeToOutside(const std::string& but = {});

  /**
   * Removes a directory of a bus, and what processes that have ended have left in it, when no
   * process is on the bus any more and nothing else lies there; else it stays.
   *
   * @throws std::runtime_error as the constructor, when it is no directory for a bus.
   */
  static void removeIfAbandoned(const std::string& directory);

  /** @returns the other processes that are on the bus now. Does not wait for anybody. */
  std::vector<BusProcess> processes() const;

  /** @returns the directory's absolute path. */
  const std::string& directory() const;

 private:
  const std::shared_ptr<BusCore> core_;
};

}  // namespace zerva
