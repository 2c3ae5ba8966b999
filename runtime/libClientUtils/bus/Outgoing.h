#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>

#include "runtime/libClientUtils/Envelope.h"
#include "runtime/libClientUtils/Parker.h"

namespace zerva {

class Connection;

/** Most bytes that wait for one process to read them. */
inline constexpr std::size_t kMaximumQueued = std::size_t{64} * 1024 * 1024;

/**
 * What is sent to another process, in the order in which it was handed over. It goes out at once
 * when nothing waits before it, else when there is room, from the bus thread or from one that sends
 * something else. Any thread.
 */
class ZERVA_EXPORT Outgoing {
 public:
  enum class Result { Taken, Full, Ended };

  /**
   * Sends a frame, or keeps it until it can be sent.
   *
   * @param data behind the head; may be null. Lent ones are copied if they are not sent at once.
   *     Where there is no memory for that the call waits until they are, if they were begun.
   * @param limit how many bytes may wait.
   * @throws std::bad_alloc when there is no memory and nothing of it was sent.
   */
  Result send(std::string head, Payload data, std::size_t limit);

  /** From here on there is a connection that may be used. On the bus thread. */
  void open(std::shared_ptr<Connection> connection);

  /** Sends what waits. On the bus thread. */
  void flush();

  /** Nothing is sent any more. */
  void end();

  /** @returns whether nothing is sent any more, since it was ended or cannot be sent. */
  bool isEnded() const;

  /** @returns the connection that is used; null when there is none now. */
  std::shared_ptr<Connection> connection() const;

  /** @returns whether nothing waits any more. */
  bool waitUntilSent(Clock::time_point deadline);

 private:
  struct Frame {
    std::string head;
    Payload data;
    std::size_t sent = 0;
    /** In the order in which they were put into the queue. */
    std::uint64_t number = 0;
    std::size_t size() const { return head.size() + (data != nullptr ? data->size() : 0); }
  };

  using Queue = std::deque<Frame>;

  bool sendSome(Frame& frame);
  bool sendWhatGoes();
  bool enqueue(Frame& frame);
  void letItBeRead(std::unique_lock<std::mutex>& lock);
  Queue::iterator find(std::uint64_t number);
  void askBusThread();
  bool keep(std::uint64_t number, const std::string& lent, std::unique_lock<std::mutex>& lock);
  bool sendFromThere(std::uint64_t number, std::unique_lock<std::mutex>& lock);
  void abandon();
  void endLocked();

  mutable std::mutex mutex_;
  // Guarded by mutex_.
  std::condition_variable sent_;
  std::shared_ptr<Connection> connection_;
  Queue queue_;
  std::uint64_t lastNumber_ = 0;
  std::size_t queued_ = 0;
  bool ended_ = false;
  bool asked_ = false;  // whether the bus thread flushes when something can be sent
};

}  // namespace zerva
