#include "runtime/libClientUtils/bus/NameTable.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include "runtime/libClientUtils/bus/BusId.h"
#include "runtime/libClientUtils/bus/BusLog.h"
#include "runtime/libClientUtils/bus/MonotonicStamp.h"

namespace zerva {

namespace {

// Two processes that begin at nearly the same moment may be read in the wrong order, for so long.
constexpr std::uint64_t kFreshFor = 1'000'000'000;

}  // namespace

NameTable::NameTable(const BusDirectory& directory, std::string ownId)
    : directory_(directory), ownId_(std::move(ownId)) {}

std::optional<NameTable::Server> NameTable::find(const std::string& name,
                                                 const std::set<std::string>& except) {
  std::vector<std::string> complaints;
  std::optional<Server> found;
  {
    const std::lock_guard lock(mutex_);
    Candidate candidate = best(name, except);
    // Who began before all files were read last has served longer than anybody who is not known.
    // Only whether it still does has to be asked then.
    if (candidate.names == nullptr || !holdsStill(candidate, name, complaints)) {
      refreshAll(complaints);
      candidate = best(name, except);
    }
    if (candidate.names != nullptr) found = {candidate.names->id(), candidate.since};
  }
  for (const std::string& complaint : complaints) {
    BUS_LOG(3, "%s", complaint.c_str());
  }
  return found;
}

void NameTable::forget(const std::string& id) {
  const std::lock_guard lock(mutex_);
  peers_.erase(id);
}

NameTable::Candidate NameTable::best(const std::string& name, const std::set<std::string>& except) {
  Candidate best;
  // In the order of their ids, which decides between two that began at the same moment.
  for (auto& [id, names] : peers_) {
    const auto since = names.servedSince(name);
    if (since && (best.names == nullptr || *since < best.since) && !except.contains(id)) {
      best = {&names, *since};
    }
  }
  return best;
}

bool NameTable::holdsStill(const Candidate& best, const std::string& name,
                           std::vector<std::string>& complaints) const {
  if (best.since >= refreshed_ || monotonicStamp() - refreshed_ > kFreshFor) {
    return false;
  }
  if (std::string complaint = best.names->refresh(); !complaint.empty()) {
    complaints.push_back(std::move(complaint));
  }
  return best.names->servedSince(name) == best.since;
}

void NameTable::refreshAll(std::vector<std::string>& complaints) {
  const std::uint64_t now = monotonicStamp();
  const auto ids = directory_.processes();
  if (!ids) {
    // For lack of descriptors, for instance: what was known is better than nothing.
    complaints.push_back("the processes on the bus cannot be looked up: " +
                         std::generic_category().message(errno));
    return;
  }
  std::set<std::string> there(ids->begin(), ids->end());
  there.erase(ownId_);
  std::erase_if(peers_, [&](const auto& peer) { return !there.contains(peer.first); });
  for (const std::string& id : there) {
    PeerNames& names = peers_.try_emplace(id, directory_, id).first->second;
    if (std::string complaint = names.refresh(); !complaint.empty()) {
      complaints.push_back(std::move(complaint));
    }
  }
  refreshed_ = now;
}

}  // namespace zerva
