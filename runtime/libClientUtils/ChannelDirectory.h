#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "framework/Export.h"
#include "runtime/libClientUtils/Destination.h"

class Executable;

namespace zerva {

class Mailbox;

/** The channels of other processes; there are none until somebody brings them in. */
class ZERVA_EXPORT RemoteChannels {
 public:
  /** @returns the way to a name that is served in another process now, or null. Does not block. */
  virtual std::shared_ptr<Destination> find(const std::string& name) = 0;

  /**
   * Is told whenever a channel of this process begins or ends being served, by the thread that does
   * it, without a lock, before it goes on. Told twice, or by two threads in the wrong order, it
   * does no harm: `ChannelDirectory::isServedHere` knows what holds now.
   */
  virtual void servedMayHaveChanged(const std::string& name) = 0;

  virtual ~RemoteChannels() = default;
};

/**
 * How a message finds its channel: the open channels of the process by name, and behind them those
 * of other processes. It hands out counted references, so that what was found stays valid while it
 * is used. There is one directory a process; any thread may use it.
 */
class ZERVA_EXPORT ChannelDirectory {
 public:
  static ChannelDirectory& instance();

  /** Lists a channel under its name, behind those that are listed under it already. */
  void add(const std::shared_ptr<Mailbox>& mailbox);

  void remove(const Mailbox& mailbox);

  /** @returns where requests to a name go now: the oldest that is served; or null. */
  std::shared_ptr<Destination> find(const std::string& name) const;

  /** @returns as `find`, in this process only. */
  std::shared_ptr<Destination> findHere(const std::string& name) const;

  bool isServedHere(const std::string& name) const { return findHere(name) != nullptr; }

  /** @returns the names that are served in this process now. */
  std::vector<std::string> servedHere() const;

  /** A channel that is listed, or was, begins or ends being served. Called without a lock. */
  void servedMayHaveChanged(const std::string& name) const;

  /**
   * @returns the channel of this process under a name through which an object gets its requests;
   *     when none says so, the oldest whose object is being made now; or null.
   */
  std::shared_ptr<Mailbox> findServing(const std::string& name, const Executable* object) const;

  /**
   * Brings in the channels of other processes, asked for names that nobody serves here.
   *
   * @param remote null takes them out again; a thread that sends at that moment may still ask them.
   */
  void setRemoteChannels(std::shared_ptr<RemoteChannels> remote);

 private:
  std::shared_ptr<RemoteChannels> remoteChannels() const;
  std::vector<std::shared_ptr<Mailbox>> listed(const std::string& name) const;

  mutable std::mutex mutex_;
  // Both guarded by mutex_.
  std::unordered_map<std::string, std::vector<std::shared_ptr<Mailbox>>> mailboxes_;
  std::shared_ptr<RemoteChannels> remote_;
};

}  // namespace zerva
