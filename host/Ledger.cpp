#include "host/Ledger.h"

#include <algorithm>
#include <map>
#include <utility>

#include "framework/ClientUtils.h"

namespace zerva {

std::size_t Ledger::add(ServiceEntry entry) {
  const std::lock_guard lock(mutex_);
  services_.push_back(std::move(entry));
  return services_.size() - 1;
}

ServiceEntry Ledger::markUp(std::size_t place) {
  const std::lock_guard lock(mutex_);
  services_[place].up = true;
  return services_[place];
}

std::vector<ServiceEntry> Ledger::markStopped() {
  const std::lock_guard lock(mutex_);
  std::vector<ServiceEntry> stopped;
  for (const std::size_t place : inOrderOfNames()) {
    ServiceEntry& entry = services_[place];
    if (entry.stopped || entry.channel.empty()) continue;
    entry.stopped = true;
    stopped.push_back(entry);
  }
  return stopped;
}

std::vector<ServiceEntry> Ledger::markDeleted() {
  const std::lock_guard lock(mutex_);
  std::vector<ServiceEntry> deleted;
  for (const std::size_t place : inOrderOfNames()) {
    services_[place].deleted = true;
    services_[place].service = nullptr;
    deleted.push_back(services_[place]);
  }
  return deleted;
}

ServiceCount Ledger::count() const {
  const std::lock_guard lock(mutex_);
  ServiceCount count;
  for (const ServiceEntry& entry : services_) {
    if (!entry.up) continue;
    ++count.up;
    if (entry.deleted) ++count.down;
  }
  return count;
}

/**
 * The order in which the repository walks: names ascending, equal names as they were added, each
 * service where its first name stands. A service without a name is not recorded there.
 */
std::vector<std::size_t> Ledger::inOrderOfNames() const {
  std::multimap<std::string, std::size_t> names;
  for (std::size_t place = 0; place < services_.size(); ++place) {
    if (services_[place].deleted) continue;
    for (const std::string& name :
         ClientUtils::tokenizeString(services_[place].interfaces, " ", true, false)) {
      names.emplace(name, place);
    }
  }
  std::vector<std::size_t> places;
  for (const auto& [name, place] : names) {
    if (std::find(places.begin(), places.end(), place) == places.end()) places.push_back(place);
  }
  return places;
}

}  // namespace zerva
