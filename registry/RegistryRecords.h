#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zerva {

/** Where the code of a proxy or an invoker lives. */
struct CodeRecord {
  std::string lib;
  std::string creator;
};

/**
 * What the registry knows: who serves which interface on which channel, and where the code of
 * proxies and invokers lives. Any thread; no lock is held while the caller's function is called.
 */
class RegistryRecords {
 public:
  /** Tells who serves a channel now, as `CommsChannel::whoServes`. */
  using WhoServes = std::function<std::string(const std::string& channel)>;

  explicit RegistryRecords(WhoServes whoServes);

  /**
   * Notes that an interface is served on a channel, behind those that were noted before. It holds
   * as long as whoever serves the channel now does; when nobody does yet, from whoever is first.
   */
  void announce(const std::string& ifc, const std::string& channel);

  /** Forgets that an interface is served on a channel; nothing happens when it is not known. */
  void withdraw(const std::string& ifc, const std::string& channel);

  /**
   * @returns the channel on which an interface is served now, of several the one that was announced
   *     first. When one before it is gone, all that was announced on that is forgotten.
   */
  std::optional<std::string> findChannel(const std::string& ifc);

  /** Notes the code of a proxy, instead of what was noted for the interface before. */
  void recordProxy(const std::string& ifc, CodeRecord record);
  std::optional<CodeRecord> findProxy(const std::string& ifc) const;

  /** Notes the code of an invoker, instead of what was noted for the pair before. */
  void recordInvoker(const std::string& ifc, const std::string& protocol, CodeRecord record);
  std::optional<CodeRecord> findInvoker(const std::string& ifc, const std::string& protocol) const;

 private:
  struct Announcement {
    std::string channel;
    /** Who serves it; empty as long as nobody did. */
    std::string server;
  };

  bool holds(const std::string& ifc, const Announcement& announcement);
  void forget(const Announcement& gone);

  const WhoServes whoServes_;

  mutable std::mutex mutex_;
  // Guarded by mutex_.
  std::map<std::string, std::vector<Announcement>> announced_;  // by interface
  std::map<std::string, CodeRecord> proxies_;                   // by interface
  std::map<std::pair<std::string, std::string>, CodeRecord> invokers_;
};

}  // namespace zerva
