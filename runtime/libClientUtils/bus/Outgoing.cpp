#include "runtime/libClientUtils/bus/Outgoing.h"

#include <sched.h>
#include <sys/uio.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <ctime>
#include <new>
#include <span>
#include <utility>

#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/NoCancellation.h"
#include "runtime/libClientUtils/Processors.h"
#include "runtime/libClientUtils/ReplyTimeout.h"
#include "runtime/libClientUtils/ServingThread.h"
#include "runtime/libClientUtils/Texts.h"
#include "runtime/libClientUtils/bus/Connection.h"

namespace zerva {

namespace {

// How often the only processor is given away: the system may choose the same thread again.
constexpr int kTries = 4;

// How long a thread sleeps between two looks whether what it has no memory to keep can be sent.
constexpr timespec kBetweenLooks{0, 1'000'000};

}  // namespace

Outgoing::Result Outgoing::send(std::string head, Payload data, std::size_t limit) {
  Frame frame{std::move(head), std::move(data)};
  const std::string* const lent = isBorrowed(frame.data) ? frame.data.get() : nullptr;
  std::unique_lock lock(mutex_);
  if (ended_) {
    return Result::Ended;
  }
  const bool first = queue_.empty() && connection_ != nullptr;
  if (first) {
    if (sendSome(frame)) {
      return Result::Taken;
    }
    if (ended_) return Result::Ended;
  } else if (queued_ + frame.size() > limit) {
    return Result::Full;
  }
  if (!enqueue(frame)) return Result::Ended;
  const std::uint64_t number = lastNumber_;
  if (first) letItBeRead(lock);
  // Whoever is before this frame may be a thread that does not run again soon.
  if (!queue_.empty() && connection_ != nullptr && !asked_) askBusThread();
  return lent == nullptr || keep(number, *lent, lock) ? Result::Taken : Result::Ended;
}

/** Puts a frame behind the others. @returns false when that has ended everything. */
bool Outgoing::enqueue(Frame& frame) {
  const std::size_t size = frame.size();
  const bool begun = frame.sent > 0;
  frame.number = lastNumber_ + 1;
  try {
    queue_.push_back(std::move(frame));
  } catch (const std::bad_alloc&) {
    if (!begun) throw;
    // Half a frame is out: nothing that is sent behind it would be understood.
    abandon();
    return false;
  }
  ++lastNumber_;
  queued_ += size;
  return true;
}

/** @returns the frame of a number; the end when it was sent. */
Outgoing::Queue::iterator Outgoing::find(std::uint64_t number) {
  const auto found = std::lower_bound(
      queue_.begin(), queue_.end(), number,
      [](const Frame& frame, std::uint64_t sought) { return frame.number < sought; });
  return found != queue_.end() && found->number == number ? found : queue_.end();
}

/** On the only processor, nobody reads what was sent while this thread runs. */
void Outgoing::letItBeRead(std::unique_lock<std::mutex>& lock) {
  if (mayUseSeveralProcessors() || ForOthersScope::on()) return;
  for (int left = kTries; left > 0 && !queue_.empty(); --left) {
    lock.unlock();
    ::sched_yield();
    lock.lock();
    sendWhatGoes();
  }
}

/**
 * Copies data that were lent for the call, if they still wait.
 *
 * @returns false when that cannot be and nothing can be sent any more.
 * @throws std::bad_alloc when that cannot be and nothing of them was sent.
 */
bool Outgoing::keep(std::uint64_t number, const std::string& lent,
                    std::unique_lock<std::mutex>& lock) {
  if (find(number) == queue_.end()) return true;
  // Not under the lock, since they may be many; who sends them meanwhile finds them here.
  lock.unlock();
  Payload copy;
  const auto noMemory = exceptionOf([&] { copy = textOfBytes(lent); });
  lock.lock();
  const auto frame = find(number);
  if (!noMemory) {
    if (frame != queue_.end()) frame->data.swap(copy);
    lock.unlock();
    return true;
  }
  if (frame == queue_.end()) return true;
  if (frame->sent > 0) return sendFromThere(number, lock);
  queued_ -= frame->size();
  queue_.erase(frame);
  if (queue_.empty()) sent_.notify_all();
  throw std::bad_alloc();
}

/**
 * Sends a frame that was begun and cannot be kept, as long as somebody would wait for an answer.
 *
 * @returns false when it could not and nothing can be sent any more.
 */
bool Outgoing::sendFromThere(std::uint64_t number, std::unique_lock<std::mutex>& lock) {
  const NoCancellation whole;
  const auto deadline = Clock::now() + replyTimeout();
  while (find(number) != queue_.end() && Clock::now() < deadline) {
    lock.unlock();
    ::nanosleep(&kBetweenLooks, nullptr);
    lock.lock();
    sendWhatGoes();
  }
  if (find(number) == queue_.end()) return true;
  abandon();
  return false;
}

void Outgoing::open(std::shared_ptr<Connection> connection) {
  {
    const std::lock_guard lock(mutex_);
    if (ended_) {
      return;
    }
    connection_ = std::move(connection);
  }
  flush();
}

void Outgoing::flush() {
  const std::lock_guard lock(mutex_);
  asked_ = false;
  if (!sendWhatGoes()) askBusThread();
}

/** Has the bus thread flush as soon as something can be sent. */
void Outgoing::askBusThread() {
  asked_ = true;
  connection_->awaitWritable();
}

/** @returns whether nothing waits any more. */
bool Outgoing::sendWhatGoes() {
  while (!queue_.empty() && !ended_) {
    if (!sendSome(queue_.front())) return ended_;
    queued_ -= queue_.front().size();
    queue_.pop_front();
  }
  sent_.notify_all();
  return true;
}

void Outgoing::end() {
  const std::lock_guard lock(mutex_);
  endLocked();
}

bool Outgoing::isEnded() const {
  const std::lock_guard lock(mutex_);
  return ended_;
}

std::shared_ptr<Connection> Outgoing::connection() const {
  const std::lock_guard lock(mutex_);
  return connection_;
}

bool Outgoing::waitUntilSent(Clock::time_point deadline) {
  std::unique_lock lock(mutex_);
  return sent_.wait_until(lock, deadline, [this] { return queue_.empty(); });
}

/** @returns whether the frame went out as a whole; if not, whether anything can is in `ended_`. */
bool Outgoing::sendSome(Frame& frame) {
  while (frame.sent < frame.size()) {
    std::array<iovec, 2> parts{};
    std::size_t count = 0;
    const std::size_t ofHead = std::min(frame.sent, frame.head.size());
    if (ofHead < frame.head.size()) {
      parts.at(count++) = {frame.head.data() + ofHead, frame.head.size() - ofHead};
    }
    const std::size_t ofData = frame.sent - ofHead;
    if (frame.data != nullptr && ofData < frame.data->size()) {
      // The system only reads it.
      parts.at(count++) = {const_cast<char*>(frame.data->data()) + ofData,
                           frame.data->size() - ofData};
    }
    const ssize_t sent = connection_->send(std::span(parts).first(count));
    if (sent < 0) {
      if (sent != -EAGAIN && sent != -ENOBUFS && sent != -EINTR) {
        // Nothing reaches the other side any more. What came from it is still read to its end.
        abandon();
      }
      return false;
    }
    frame.sent += static_cast<std::size_t>(sent);
  }
  return true;
}

/** Ends it so that the other side, if it is still there, does not wait for what is missing. */
void Outgoing::abandon() {
  if (connection_ != nullptr) connection_->endSending();
  endLocked();
}

void Outgoing::endLocked() {
  ended_ = true;
  connection_.reset();
  queue_.clear();
  queued_ = 0;
  sent_.notify_all();
}

}  // namespace zerva
