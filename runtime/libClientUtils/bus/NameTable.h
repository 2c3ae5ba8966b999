#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "runtime/libClientUtils/bus/BusDirectory.h"
#include "runtime/libClientUtils/bus/PeerNames.h"

namespace zerva {

/** Which other process serves which name, read from their files when somebody asks. Any thread. */
class NameTable {
 public:
  /**
   * @param directory lives longer.
   * @param ownId of the process that asks; its own names are not looked at.
   */
  NameTable(const BusDirectory& directory, std::string ownId);

  /** A process that serves a name, and since when, in nanoseconds of the monotonic clock. */
  struct Server {
    SharedName id;
    std::uint64_t since;
  };

  /**
   * @param except processes that are not looked at.
   * @returns the process that has served the name longest; when it returns nothing, nobody served
   *     it at some moment of the call. Does not wait for anybody.
   */
  std::optional<Server> find(const std::string& name, const std::set<std::string>& except);

  /** Forgets what was read of a process that has ended. */
  void forget(const std::string& id);

 private:
  /** One whose file told of a name when it was read last. */
  struct Candidate {
    PeerNames* names = nullptr;
    std::uint64_t since = 0;
  };

  Candidate best(const std::string& name, const std::set<std::string>& except);
  bool holdsStill(const Candidate& best, const std::string& name,
                  std::vector<std::string>& complaints) const;
  void refreshAll(std::vector<std::string>& complaints);

  const BusDirectory& directory_;
  const std::string ownId_;
  std::mutex mutex_;
  // Guarded by mutex_.
  std::map<std::string, PeerNames> peers_;
  std::uint64_t refreshed_ = 0;
};

}  // namespace zerva
