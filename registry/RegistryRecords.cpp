#include "registry/RegistryRecords.h"

#include <algorithm>

namespace zerva {

RegistryRecords::RegistryRecords(IsServed isServed) : isServed_(std::move(isServed)) {}

void RegistryRecords::announce(const std::string& ifc, const std::string& channel) {
  const std::lock_guard<std::mutex> lock(mutex_);
  auto& channels = channels_[ifc];
  if (std::find(channels.begin(), channels.end(), channel) == channels.end()) {
    channels.push_back(channel);
  }
}

void RegistryRecords::withdraw(const std::string& ifc, const std::string& channel) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = channels_.find(ifc);
  if (found == channels_.end()) {
    return;
  }
  auto& channels = found->second;
  channels.erase(std::remove(channels.begin(), channels.end(), channel), channels.end());
  if (channels.empty()) {
    channels_.erase(found);
  }
}

std::optional<std::string> RegistryRecords::findChannel(const std::string& ifc) {
  std::vector<std::string> channels;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = channels_.find(ifc);
    if (found != channels_.end()) {
      channels = found->second;
    }
  }
  for (const std::string& channel : channels) {
    if (isServed_(channel)) {
      return channel;
    }
    withdraw(ifc, channel);
  }
  return std::nullopt;
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
