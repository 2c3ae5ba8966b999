#include "runtime/libClientUtils/bus/SocketWatch.h"

#include <sys/epoll.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <span>
#include <system_error>
#include <utility>

#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/bus/BusLog.h"

namespace zerva {

namespace {

// What is ready besides is told the next time.
constexpr int kAtOnce = 16;

constexpr std::uint32_t kReadable = EPOLLIN;
constexpr std::uint32_t kWritable = EPOLLOUT;

int makeEpoll() {
  const int descriptor = ::epoll_create1(EPOLL_CLOEXEC);
  if (descriptor < 0) {
    throw std::system_error(errno, std::generic_category(), "sockets cannot be watched");
  }
  return descriptor;
}

epoll_event asked(std::uint64_t known, bool readable, bool writable) {
  epoll_event event{};
  event.events = EPOLLONESHOT | (readable ? kReadable : 0U) | (writable ? kWritable : 0U);
  event.data.u64 = known;
  return event;
}

}  // namespace

void* SocketWatch::Room::take(std::size_t size) {
  if (taken_ || size > bytes_.size()) throw std::bad_alloc();
  taken_ = true;
  return bytes_.data();
}

SocketWatch::SocketWatch(std::shared_ptr<asio::io_context> context)
    : context_(std::move(context)), epoll_(makeEpoll()), all_(*context_, epoll_) {}

SocketWatch::~SocketWatch() = default;

void SocketWatch::start() { awaitAny(); }

void SocketWatch::close() {
  // It stays open, since other threads still say what they want to be told.
  asio::error_code ignored;
  all_.cancel(ignored);
}

std::uint64_t SocketWatch::add(int socket, std::weak_ptr<Watched> watched) {
  const std::lock_guard lock(mutex_);
  const std::uint64_t known = ++last_;
  const auto kept = watched_.emplace(known, std::move(watched)).first;
  epoll_event event = asked(known, false, false);
  if (::epoll_ctl(epoll_, EPOLL_CTL_ADD, socket, &event) != 0) {
    const int error = errno;
    watched_.erase(kept);
    throw std::system_error(error, std::generic_category(), "a socket cannot be watched");
  }
  return known;
}

void SocketWatch::await(int socket, std::uint64_t known, bool readable, bool writable) const {
  epoll_event event = asked(known, readable, writable);
  ::epoll_ctl(epoll_, EPOLL_CTL_MOD, socket, &event);
}

void SocketWatch::remove(int socket, std::uint64_t known) {
  ::epoll_ctl(epoll_, EPOLL_CTL_DEL, socket, nullptr);
  const std::lock_guard lock(mutex_);
  watched_.erase(known);
}

void SocketWatch::awaitAny() {
  all_.async_wait(asio::posix::stream_descriptor::wait_read,
                  Wait{this, Wait::allocator_type(room_)});
}

void SocketWatch::tell() {
  std::array<epoll_event, kAtOnce> events{};
  const auto count =
      static_cast<std::size_t>(std::max(::epoll_wait(epoll_, events.data(), kAtOnce, 0), 0));
  // Asked for first, so that it goes on whatever becomes of those that are told.
  awaitAny();
  for (const epoll_event& event : std::span(events).first(count)) {
    if (const auto watched = find(event.data.u64)) {
      // Also what is wrong with it is found out by reading or sending.
      const bool readable = (event.events & ~kWritable) != 0;
      const bool writable = (event.events & ~kReadable) != 0;
      if (const auto error = exceptionOf([&] { watched->ready(readable, writable); })) {
        BUS_LOG(2, "something was left undone: %s", error->c_str());
      }
    }
  }
}

std::shared_ptr<SocketWatch::Watched> SocketWatch::find(std::uint64_t known) const {
  const std::lock_guard lock(mutex_);
  const auto found = watched_.find(known);
  return found != watched_.end() ? found->second.lock() : nullptr;
}

}  // namespace zerva
