#include "runtime/libClientUtils/bus/Connection.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>

#include <asio/buffer.hpp>
#include <asio/post.hpp>
#include <cerrno>
#include <span>
#include <utility>

#include "runtime/libClientUtils/ExceptionText.h"

namespace zerva {

Connection::Connection(std::shared_ptr<asio::io_context> context, FileDescriptor socket,
                       std::size_t limit)
    : context_(std::move(context)), socket_(*context_), frames_(limit), descriptor_(socket.get()) {
  socket_.assign(asio::local::stream_protocol(), socket.get());
  socket.release();
}

Connection::~Connection() = default;

void Connection::setHandler(Handler handler, std::size_t limit) {
  handler_ = std::make_shared<const Handler>(std::move(handler));
  frames_.setLimit(limit);
}

void Connection::start() {
  if (socket_.is_open()) {
    read();
  }
}

void Connection::postStart() {
  asio::post(*context_, [self = shared_from_this()] {
    // One that is not read would stay as it is, and all who wait for an answer with it.
    if (const auto failure = exceptionOf([&] { self->start(); })) {
      self->end(*failure);
    }
  });
}

void Connection::close() {
  {
    const std::lock_guard lock(mutex_);
    descriptor_ = -1;
  }
  asio::error_code ignored;
  socket_.close(ignored);
  handler_.reset();
}

void Connection::read() {
  const std::span<char> room = frames_.room();
  socket_.async_read_some(asio::buffer(room.data(), room.size()),
                          [self = shared_from_this()](asio::error_code error, std::size_t size) {
                            if (error == asio::error::operation_aborted) {
                              return;
                            }
                            if (error) {
                              self->end({});
                            } else {
                              self->received(size);
                            }
                          });
}

void Connection::received(std::size_t size) {
  const auto error = exceptionOf([&] {
    frames_.arrived(size);
    takeFrames();
    if (socket_.is_open()) {
      read();
    }
  });
  if (error) {
    end(*error);
  }
}

void Connection::takeFrames() {
  // Whoever is told may close the connection or hand it to somebody else.
  while (const auto handler = handler_) {
    std::string_view body;
    const auto next = frames_.next(body);
    if (next == FrameBuffer::Next::Incomplete) {
      return;
    }
    if (next == FrameBuffer::Next::TooLong) {
      end("it sent a frame that is too long");
      return;
    }
    handler->frame(body);
  }
}

void Connection::end(const std::string& why) {
  const auto handler = handler_;
  close();
  if (handler != nullptr) {
    handler->ended(why);
  }
}

void Connection::awaitWritable() {
  asio::post(*context_, [self = shared_from_this()] {
    if (!self->socket_.is_open()) {
      return;
    }
    const auto failure = exceptionOf([&] {
      self->socket_.async_wait(asio::local::stream_protocol::socket::wait_write,
                               [self](asio::error_code error) {
                                 const auto handler = self->handler_;
                                 if (!error && handler != nullptr && handler->writable) {
                                   handler->writable();
                                 }
                               });
    });
    if (failure) {
      self->end(*failure);
    }
  });
}

ssize_t Connection::send(iovec* parts, std::size_t count) {
  msghdr message{};
  message.msg_iov = parts;
  message.msg_iovlen = count;
  const std::lock_guard lock(mutex_);
  if (descriptor_ < 0) {
    return -EPIPE;
  }
  const ssize_t sent = ::sendmsg(descriptor_, &message, MSG_DONTWAIT | MSG_NOSIGNAL);
  if (sent >= 0) {
    return sent;
  }
  return -errno;
}

void Connection::endSending() {
  const std::lock_guard lock(mutex_);
  if (descriptor_ >= 0) {
    ::shutdown(descriptor_, SHUT_WR);
  }
}

void Connection::sendGreeting(std::string frame) {
  iovec part{frame.data(), frame.size()};
  if (send(&part, 1) != static_cast<ssize_t>(frame.size())) {
    // Without it nothing comes of the connection.
    endSending();
  }
}

bool Connection::hungUp() const {
  const std::lock_guard lock(mutex_);
  pollfd state{descriptor_, POLLRDHUP, 0};
  return descriptor_ < 0 || (::poll(&state, 1, 0) > 0 && (state.revents & ~POLLIN) != 0);
}

}  // namespace zerva
