#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "framework/Export.h"
#include "runtime/libClientUtils/Envelope.h"
#include "runtime/libClientUtils/Parker.h"

namespace zerva {

/** The requests that another process was asked and has not answered. Any thread. */
class ZERVA_EXPORT AskedRequests {
 public:
  /**
   * Keeps a request until it is answered, or its time is over.
   *
   * @param ticket moved from unless all has ended.
   * @returns the id that the other process answers it by; 0 when all has ended.
   */
  std::uint32_t add(ReplyTicket& ticket);

  /** @returns the request that is answered; one that nobody waits for when there is none. */
  ReplyTicket take(std::uint32_t wireId);

  /** @returns all, which their owner lets fail. None is kept any more. */
  std::vector<ReplyTicket> end();

  std::size_t count() const;

 private:
  struct Asked {
    ReplyTicket ticket;
    Clock::time_point deadline;
  };

  using Requests = std::unordered_map<std::uint32_t, Asked>;

  Asked& place(std::uint32_t wireId);
  void dropLate(Clock::time_point now);

  static constexpr std::size_t kMany = 64;

  mutable std::mutex mutex_;
  // Guarded by mutex_.
  Requests asked_;
  Requests::node_type spare_;  // for the next one; its ticket is nobody's
  std::size_t lookAgainAt_ = kMany;
  std::uint32_t lastId_ = 0;
  bool ended_ = false;
};

}  // namespace zerva
