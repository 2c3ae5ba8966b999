#include "runtime/libClientUtils/bus/Outgoing.h"

#include <sched.h>
#include <sys/uio.h>

#include <array>
#include <cerrno>
#include <span>
#include <utility>

#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/Processors.h"
#include "runtime/libClientUtils/Texts.h"
#include "runtime/libClientUtils/bus/Connection.h"

namespace zerva {

namespace {

// How often the only processor is given away: the system may choose the same thread again.
constexpr int kTries = 4;

}  // namespace

Outgoing::Result Outgoing::send(std::string head, Payload data, std::size_t limit) {
  Frame frame{std::move(head), std::move(data)};
  std::unique_lock lock(mutex_);
  if (ended_) {
    return Result::Ended;
  }
  if (queue_.empty() && connection_ != nullptr) {
    if (sendSome(frame)) {
      return Result::Taken;
    }
    return ended_ ? Result::Ended : sendRest(frame, lock);
  }
  if (queued_ + frame.size() > limit) {
    return Result::Full;
  }
  keep(frame);
  return Result::Taken;
}

/** Puts a frame behind the others. */
void Outgoing::keep(Frame& frame) {
  const std::size_t size = frame.size();
  frame.data = kept(std::move(frame.data));
  queue_.push_back(std::move(frame));
  queued_ += size;
}

/**
 * Sees to it that the rest of a frame is sent, before all others: by this thread, if that goes
 * soon, else when something can be sent.
 */
Outgoing::Result Outgoing::sendRest(Frame& frame, std::unique_lock<std::mutex>& lock) {
  const std::string* const data = isBorrowed(frame.data) ? frame.data.get() : nullptr;
  const std::size_t size = frame.size();
  if (exceptionOf([&] { queue_.push_back(std::move(frame)); })) {
    // Half a frame may be out: nothing that is sent behind it would be understood.
    abandon();
    return Result::Ended;
  }
  queued_ += size;
  const int tries = mayUseSeveralProcessors() ? 0 : kTries;
  for (int left = tries; left > 0 && !queue_.empty(); --left) {
    // For whoever reads it: nobody does while this thread has the only processor.
    lock.unlock();
    ::sched_yield();
    lock.lock();
    sendWhatGoes();
  }
  if (!queue_.empty()) connection_->awaitWritable();
  // Sent from where they are only as long as this thread was here.
  if (data != nullptr && !queue_.empty() && queue_.front().data.get() == data &&
      exceptionOf([&] { queue_.front().data = kept(std::move(queue_.front().data)); })) {
    abandon();
    return Result::Ended;
  }
  return Result::Taken;
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
  if (!sendWhatGoes()) connection_->awaitWritable();
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
  connection_->endSending();
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
