#include "bench/floors/SocketEcho.h"

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <stdexcept>

namespace zerva::bench {

namespace {

/** @returns false when the other side is gone. */
bool readAll(int socket, char* to, std::size_t size) {
  while (size > 0) {
    const ssize_t got = ::read(socket, to, size);
    if (got <= 0) return false;
    to += got;
    size -= static_cast<std::size_t>(got);
  }
  return true;
}

bool writeAll(int socket, const char* from, std::size_t size) {
  while (size > 0) {
    const ssize_t written = ::write(socket, from, size);
    if (written <= 0) return false;
    from += written;
    size -= static_cast<std::size_t>(written);
  }
  return true;
}

}  // namespace

SocketEcho::SocketEcho(SocketTraffic traffic)
    : traffic_(traffic), there_(traffic.there, 'x'), back_(traffic.back, 'x') {
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0) {
    throw std::runtime_error("no socket can be made");
  }
  near_ = ends[0];
  far_ = ends[1];
  process_ = std::make_unique<OtherProcess>([this](const OtherProcess::Stay& /*stay*/) {
    ::close(near_);
    serve();
  });
  ::close(far_);
}

SocketEcho::~SocketEcho() { ::close(near_); }

void SocketEcho::serve() const {
  std::string message(traffic_.there, 'x');
  for (;;) {
    for (int i = 0; i < traffic_.messages; ++i) {
      if (!readAll(far_, message.data(), message.size())) return;
    }
    if (!writeAll(far_, back_.data(), back_.size())) return;
  }
}

void SocketEcho::call() {
  bool good = true;
  for (int i = 0; i < traffic_.messages; ++i) {
    good = good && writeAll(near_, there_.data(), there_.size());
  }
  if (!good || !readAll(near_, back_.data(), back_.size())) {
    throw std::runtime_error("the other side of the socket is gone");
  }
}

}  // namespace zerva::bench
