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

  /**
   * @param except processes that are not looked at.
   * @returns the process that has served the name longest; when it returns nothing, nobody served
   *     it at some moment of the call. Does not wait for anybody.
   */
  std::optional<std::string> find(const std::string& name, const std::set<std::string>& except);

  /** Forgets what was read of a process that has ended. */
  void forget(const std::string& id);

 private:
  struct Best {
    std::string id;
    std::uint64_t since;
  };
  std::optional<Best> best(const std::string& name, const std::set<std::string>& except) const;
  bool holdsStill(const Best& best, const std::string& name, std::vector<std::string>& complaints);
  void refreshAll(std::vector<std::string>& complaints);

  const BusDirectory& directory_;
  const std::string ownId_;
  std::mutex mutex_;
  // Guarded by mutex_.
  std::map<std::string, PeerNames> peers_;
  std::uint64_t refreshed_ = 0;
};

}  // namespace zerva
