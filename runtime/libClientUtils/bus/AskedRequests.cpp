#include "runtime/libClientUtils/bus/AskedRequests.h"

#include <algorithm>
#include <utility>

#include "runtime/libClientUtils/ReplyTimeout.h"

namespace zerva {

std::uint32_t AskedRequests::add(ReplyTicket& ticket) {
  const auto now = Clock::now();
  const std::lock_guard lock(mutex_);
  if (ended_) {
    return 0;
  }
  if (asked_.size() >= lookAgainAt_) {
    dropLate(now);
  }
  do {
    ++lastId_;
  } while (lastId_ == 0 || asked_.contains(lastId_));
  Asked& asked = place(lastId_);
  asked.ticket = std::move(ticket);
  asked.deadline = now + replyTimeout();
  return lastId_;
}

ReplyTicket AskedRequests::take(std::uint32_t wireId) {
  const std::lock_guard lock(mutex_);
  const auto found = asked_.find(wireId);
  if (found == asked_.end()) {
    return {};
  }
  ReplyTicket ticket = std::move(found->second.ticket);
  spare_ = asked_.extract(found);
  return ticket;
}

/** @returns the place for a request, under the lock; if possible that of one that was answered. */
AskedRequests::Asked& AskedRequests::place(std::uint32_t wireId) {
  if (spare_.empty()) return asked_[wireId];
  spare_.key() = wireId;
  return asked_.insert(std::move(spare_)).position->second;
}

std::vector<ReplyTicket> AskedRequests::end() {
  const std::lock_guard lock(mutex_);
  ended_ = true;
  std::vector<ReplyTicket> all;
  for (auto& [id, asked] : asked_) {
    all.push_back(std::move(asked.ticket));
  }
  asked_.clear();
  return all;
}

std::size_t AskedRequests::count() const {
  const std::lock_guard lock(mutex_);
  return asked_.size();
}

/** A process that answers nothing must not make this grow without end. */
void AskedRequests::dropLate(Clock::time_point now) {
  for (auto it = asked_.begin(); it != asked_.end();) {
    if (it->second.deadline < now) {
      // Whoever waited has given up by itself.
      it->second.ticket.cancel();
      it = asked_.erase(it);
    } else {
      ++it;
    }
  }
  lookAgainAt_ = std::max(kMany, 2 * asked_.size());
}

}  // namespace zerva
