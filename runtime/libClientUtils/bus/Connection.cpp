#include "runtime/libClientUtils/bus/Connection.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <span>
#include <stdexcept>
#include <utility>

#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/NoCancellation.h"
#include "runtime/libClientUtils/bus/Frames.h"

namespace zerva {

namespace {

// So many times in a row, though there is more; others have something to do, too.
constexpr int kReadsAtOnce = 4;

constexpr std::size_t kShort = 512;
constexpr int kNow = MSG_DONTWAIT | MSG_NOSIGNAL;

/** Short pieces are put together, since to send one takes less. */
ssize_t sendNow(int socket, std::span<const iovec> parts) {
  // A thread that is cancelled amid a frame would leave half of it.
  const NoCancellation whole;
  std::array<char, kShort> together;
  std::size_t size = 0;
  for (const iovec& part : parts) {
    if (part.iov_len > together.size() - size) {
      msghdr message{};
      message.msg_iov = const_cast<iovec*>(parts.data());
      message.msg_iovlen = parts.size();
      return ::sendmsg(socket, &message, kNow);
    }
    std::memcpy(together.data() + size, part.iov_base, part.iov_len);
    size += part.iov_len;
  }
  return ::send(socket, together.data(), size, kNow);
}

}  // namespace

Connection::Connection(std::shared_ptr<SocketWatch> watch, FileDescriptor socket, std::size_t limit)
    : watch_(std::move(watch)), frames_(limit, &sizeBeforeData), socket_(std::move(socket)) {}

Connection::~Connection() { releaseSocket(); }

void Connection::setHandler(Handler handler, std::size_t limit) {
  auto shared = std::make_shared<const Handler>(std::move(handler));
  frames_.setLimit(limit);
  const std::lock_guard lock(mutex_);
  // The former one goes after the lock: it may be the last that knows its owner.
  if (!closed_) handler_.swap(shared);
}

void Connection::start() {
  const std::lock_guard lock(mutex_);
  if (closed_) return;
  watched_ = watch_->add(socket_.get(), weak_from_this());
  awaitMore();
}

void Connection::share() {
  const std::lock_guard lock(mutex_);
  shared_ = true;
}

void Connection::close() {
  HandlerPointer unused;  // may be the last that knows its owner: not released under the lock
  const std::lock_guard lock(mutex_);
  closed_ = true;
  unused.swap(handler_);
  if (reading_) {
    // Whoever reads still uses the descriptor, and is told by what it reads.
    ::shutdown(socket_.get(), SHUT_RDWR);
  } else {
    releaseSocket();
  }
}

void Connection::waitForReader() {
  std::unique_lock lock(mutex_);
  readerGone_.wait(lock, [this] { return !reading_; });
}

/** Under the lock, while nobody reads. Some may still know the connection for long. */
void Connection::releaseSocket() {
  if (watched_) watch_->remove(socket_.get(), *std::exchange(watched_, std::nullopt));
  socket_.reset();
  line_.reset();
  frames_ = FrameBuffer(0);
}

/** Under the lock: has the bus thread told of what is of use now. */
void Connection::awaitMore() const {
  if (watched_) watch_->await(socket_.get(), *watched_, !reading_, wantsToSend_);
}

bool Connection::beginReading() {
  const std::lock_guard lock(mutex_);
  if (closed_ || failed_ || reading_ || !shared_ || !hasLine()) return false;
  reading_ = true;
  awaitMore();
  return true;
}

/** Under the lock. Without memory or a descriptor for a line the bus thread reads everything. */
bool Connection::hasLine() {
  if (!line_) exceptionOf([this] { line_.emplace(); });
  if (line_ && line_->descriptor() < 0) line_.reset();
  return line_.has_value();
}

/** On the bus thread, that was told and is not told again before it has read. */
bool Connection::beginReadingHere() {
  const std::lock_guard lock(mutex_);
  if (closed_ || reading_) return false;
  reading_ = true;
  return true;
}

void Connection::endReading() {
  const std::lock_guard lock(mutex_);
  reading_ = false;
  if (closed_) {
    releaseSocket();
    readerGone_.notify_all();
  } else {
    awaitMore();
  }
}

Input::Read Connection::read() {
  Read result = Read::Ended;
  std::optional<std::string> error;
  auto noWords = exceptionOf([&] { error = exceptionOf([&] { result = readSome(); }); });
  // There is no memory then for what is wrong.
  if (noWords) error.swap(noWords);
  if (!error) return result;
  fail(*std::move(error));
  return Read::Ended;
}

/** Reads until there is nothing more for now, if that does not take too long. */
Input::Read Connection::readSome() {
  bool taken = false;
  bool filled = true;
  for (int left = kReadsAtOnce; filled && left > 0; --left) {
    const auto room = frames_.room();
    const ssize_t size = receive(room);
    if (size <= 0) {
      const bool ended = size == 0 || (errno != EAGAIN && errno != EINTR);
      // An end is found again.
      if (left == kReadsAtOnce) return ended ? Read::Ended : Read::Nothing;
      break;
    }
    filled = static_cast<std::size_t>(size) == room[0].size() + room[1].size();
    frames_.arrived(static_cast<std::size_t>(size));
    taken = takeFrames() || taken;
  }
  return taken ? Read::Messages : Read::Part;
}

/** @returns as `recv`. */
ssize_t Connection::receive(std::span<const std::span<char>, 2> room) const {
  // One piece takes less.
  if (room[0].empty()) return ::recv(socket_.get(), room[1].data(), room[1].size(), kNow);
  std::array<iovec, 2> parts{{{room[0].data(), room[0].size()}, {room[1].data(), room[1].size()}}};
  msghdr message{};
  message.msg_iov = parts.data();
  message.msg_iovlen = parts.size();
  return ::recvmsg(socket_.get(), &message, kNow);
}

/** @returns whether there was a whole one. */
bool Connection::takeFrames() {
  bool taken = false;
  std::string_view body;
  Payload data;
  auto next = FrameBuffer::Next::Whole;
  while ((next = frames_.next(body, data)) == FrameBuffer::Next::Whole) {
    // Whoever is told may close the connection or hand it to somebody else.
    const HandlerPointer told = handler();
    if (told == nullptr) return taken;
    taken = true;
    told->frame(body, std::move(data));
  }
  if (next == FrameBuffer::Next::TooLong) {
    throw std::runtime_error("it sent a frame that is too long");
  }
  return taken;
}

/** Keeps why nothing is to be read any more for the bus thread, which finds an end there. */
void Connection::fail(std::string why) {
  failure_ = std::move(why);
  const std::lock_guard lock(mutex_);
  failed_ = true;
  ::shutdown(socket_.get(), SHUT_RD);
}

bool Connection::hasFailed() const {
  const std::lock_guard lock(mutex_);
  return failed_;
}

Connection::HandlerPointer Connection::handler() const {
  const std::lock_guard lock(mutex_);
  return handler_;
}

void Connection::ready(bool readable, bool writable) {
  if (writable) tellWritable();
  if (!readable) {
    const std::lock_guard lock(mutex_);
    if (!closed_) awaitMore();
  } else if (beginReadingHere()) {
    readHere();
  }
}

void Connection::tellWritable() {
  HandlerPointer told;
  {
    const std::lock_guard lock(mutex_);
    if (std::exchange(wantsToSend_, false)) told = handler_;
  }
  if (told != nullptr && told->writable) told->writable();
}

void Connection::readHere() {
  const Read result = hasFailed() ? Read::Ended : read();
  if (result != Read::Ended) {
    endReading();
    return;
  }
  const HandlerPointer told = handler();
  const std::string why = std::move(failure_);
  close();
  endReading();
  if (told != nullptr) told->ended(why);
}

void Connection::awaitWritable() {
  const std::lock_guard lock(mutex_);
  if (closed_) return;
  wantsToSend_ = true;
  awaitMore();
}

ssize_t Connection::send(std::span<const iovec> parts) {
  const std::lock_guard lock(mutex_);
  if (closed_) {
    return -EPIPE;
  }
  const ssize_t sent = sendNow(socket_.get(), parts);
  if (sent >= 0) {
    return sent;
  }
  return -errno;
}

void Connection::endSending() {
  const std::lock_guard lock(mutex_);
  if (!closed_) {
    ::shutdown(socket_.get(), SHUT_WR);
  }
}

void Connection::sendGreeting(std::string frame) {
  iovec part{frame.data(), frame.size()};
  if (send({&part, 1}) != static_cast<ssize_t>(frame.size())) {
    // Without it nothing comes of the connection.
    endSending();
  }
}

bool Connection::hungUp() const {
  const std::lock_guard lock(mutex_);
  pollfd state{socket_.get(), POLLRDHUP, 0};
  return closed_ || (::poll(&state, 1, 0) > 0 && (state.revents & ~POLLIN) != 0);
}

}  // namespace zerva
