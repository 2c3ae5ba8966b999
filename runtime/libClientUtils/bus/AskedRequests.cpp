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
  asked_.emplace(lastId_, Asked{std::move(ticket), now + replyTimeout()});
  return lastId_;
}

ReplyTicket AskedRequests::take(std::uint32_t wireId) {
  const std::lock_guard lock(mutex_);
  const auto found = asked_.find(wireId);
  if (found == asked_.end()) {
    return {};
  }
  ReplyTicket ticket = std::move(found->second.ticket);
  asked_.erase(found);
  return ticket;
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
