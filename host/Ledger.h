#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <vector>

class Service;

namespace zerva {

/** What is known of a service of this process. */
struct ServiceEntry {
  const Service* service = nullptr;
  /** Interface names separated by single blanks. */
  std::string interfaces;
  /** Empty for a legacy service. */
  std::string channel;
  /** The library as the directive names it. */
  std::string library;
  /** The service's type and the library that it comes from. */
  std::string type;
  /** "MT", "ST", "legacy", with ", lazy" where that is so. */
  std::string mode;
  bool up = false;
  bool stopped = false;
  bool deleted = false;
};

/** How many services there were. */
struct ServiceCount {
  std::size_t up = 0;
  /** Of those that came up, how many went down. */
  std::size_t down = 0;
};

/** What came up in a process and what became of it. Any thread may call any operation. */
class Ledger {
 public:
  /** Enters a service that was recorded. @returns its place. */
  std::size_t add(ServiceEntry entry);

  /** Notes that a service is initialised. @returns what is known of it. */
  ServiceEntry markUp(std::size_t place);

  /** Notes that the services with a channel were stopped. @returns them in the order of stopping.
   */
  std::vector<ServiceEntry> markStopped();

  /** Notes that all services were deleted. @returns them in the order of deletion. */
  std::vector<ServiceEntry> markDeleted();

  ServiceCount count() const;

 private:
  std::vector<std::size_t> inOrderOfNames() const;

  mutable std::mutex mutex_;
  std::vector<ServiceEntry> services_;  // guarded by mutex_
};

}  // namespace zerva
