#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "runtime/libClientUtils/ChannelDirectory.h"
#include "runtime/libClientUtils/bus/Bus.h"
#include "runtime/libClientUtils/bus/BusDirectory.h"
#include "runtime/libClientUtils/bus/BusShared.h"
#include "runtime/libClientUtils/bus/BusThread.h"
#include "runtime/libClientUtils/bus/Listener.h"
#include "runtime/libClientUtils/bus/NameTable.h"
#include "runtime/libClientUtils/bus/OwnFile.h"
#include "runtime/libClientUtils/bus/OwnNames.h"
#include "runtime/libClientUtils/bus/Peer.h"

namespace zerva {

/** The inside of a bus; it lives as long as any thread still looks something up in it. */
class BusCore final : public RemoteChannels {
 public:
  /** @throws std::runtime_error with directory and cause. */
  explicit BusCore(const std::string& directory);
  ~BusCore() override;
  BusCore(const BusCore&) = delete;
  BusCore& operator=(const BusCore&) = delete;

  const std::string& directory() const { return directory_.path(); }

  void closeToOutside(const std::string& but);

  std::vector<BusProcess> processes() const;

  /** Ends all. Once, by one thread. */
  void close();

  std::shared_ptr<Destination> find(const std::string& name) override;
  void servedMayHaveChanged(const std::string& name) override;

 private:
  /** The way to a process; neither is set when it has ended. */
  struct Way {
    std::shared_ptr<Peer> peer;
    std::string unreachable;
  };

  FileDescriptor listen() const;
  Way reach(const std::string& id);
  void greeted(const std::shared_ptr<Connection>& connection, const std::string& id);
  bool hasTooManyNames(int process) const;
  std::shared_ptr<Peer> newPeer(const std::string& id);
  void forget(const std::shared_ptr<Peer>& peer);
  void peerEnded(const std::shared_ptr<Peer>& peer, bool otherVersion);
  void lookForLeftover(const std::string& id, unsigned triesLeft);

  const BusDirectory directory_;
  const std::shared_ptr<BusShared> shared_;
  OwnNames ownNames_;
  NameTable names_;
  const OwnFile socketFile_;  // before the socket, which makes it
  Listener listener_;
  std::atomic<bool> closed_{false};

  mutable std::mutex mutex_;
  // Guarded by mutex_.
  std::unordered_map<std::string, std::shared_ptr<Peer>> peers_;
  std::set<std::shared_ptr<Peer>> all_;  // also those that another has replaced
  std::set<std::string> excluded_;       // they speak another version

  // Last, so that it has ended when the others go.
  BusThread thread_;
};

}  // namespace zerva
