#include "registry/RegistryRecords.h"

#include <algorithm>
#include <iterator>

namespace zerva {

namespace {

/** @returns what tells whether an announcement is for a channel. */
auto isFor(const std::string& channel) {
  return [&channel](const auto& announcement) { return announcement.channel == channel; };
}

}  // namespace

RegistryRecords::RegistryRecords(WhoServes whoServes) : whoServes_(std::move(whoServes)) {}

void RegistryRecords::announce(const std::string& ifc, const std::string& channel) {
  std::string server = whoServes_(channel);
  const std::lock_guard<std::mutex> lock(mutex_);
  auto& announced = announced_[ifc];
  const auto known = std::find_if(announced.begin(), announced.end(), isFor(channel));
  if (known != announced.end()) {
    if (known->server.empty()) {
      known->server = std::move(server);
      return;
    }
    if (server.empty() || known->server == server) {
      return;
    }
    // Somebody else serves the channel by now: that is a new announcement.
    announced.erase(known);
  }
  announced.push_back({channel, std::move(server)});
}

void RegistryRecords::withdraw(const std::string& ifc, const std::string& channel) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = announced_.find(ifc);
  if (found == announced_.end()) {
    return;
  }
  auto& announced = found->second;
  announced.erase(std::remove_if(announced.begin(), announced.end(), isFor(channel)),
                  announced.end());
  if (announced.empty()) {
    announced_.erase(found);
  }
}

std::optional<std::string> RegistryRecords::findChannel(const std::string& ifc) {
  std::vector<Announcement> announced;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = announced_.find(ifc);
    if (found != announced_.end()) {
      announced = found->second;
    }
  }
  for (const Announcement& announcement : announced) {
    if (holds(ifc, announcement)) {
      return announcement.channel;
    }
  }
  return std::nullopt;
}

/** @returns whether an announcement holds now; when it never will again it is forgotten. */
bool RegistryRecords::holds(const std::string& ifc, const Announcement& announcement) {
  const std::string server = whoServes_(announcement.channel);
  if (!announcement.server.empty()) {
    if (server != announcement.server) {
      forget(announcement);
    }
    return server == announcement.server;
  }
  if (!server.empty()) {
    announce(ifc, announcement.channel);
  }
  return !server.empty();
}

/** Forgets all that was announced on a channel as long as somebody served it who does no longer. */
void RegistryRecords::forget(const Announcement& gone) {
  const auto isGone = [&](const Announcement& announcement) {
    return announcement.channel == gone.channel && announcement.server == gone.server;
  };
  const std::lock_guard<std::mutex> lock(mutex_);
  for (auto it = announced_.begin(); it != announced_.end();) {
    auto& announced = it->second;
    announced.erase(std::remove_if(announced.begin(), announced.end(), isGone), announced.end());
    it = announced.empty() ? announced_.erase(it) : std::next(it);
  }
}

void RegistryRecords::recordProxy(const std::string& ifc, CodeRecord record) {
  const std::lock_guard<std::mutex> lock(mutex_);
  proxies_[ifc] = std::move(record);
}

std::optional<CodeRecord> RegistryRecords::findProxy(const std::string& ifc) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = proxies_.find(ifc);
  return found == proxies_.end() ? std::nullopt : std::make_optional(found->second);
}

void RegistryRecords::recordInvoker(const std::string& ifc, const std::string& protocol,
                                    CodeRecord record) {
  const std::lock_guard<std::mutex> lock(mutex_);
  invokers_[{ifc, protocol}] = std::move(record);
}

std::optional<CodeRecord> RegistryRecords::findInvoker(const std::string& ifc,
                                                       const std::string& protocol) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = invokers_.find({ifc, protocol});
  return found == invokers_.end() ? std::nullopt : std::make_optional(found->second);
}

}  // namespace zerva
