#include "host/notify/NotifySocket.h"

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <system_error>

namespace zerva {
namespace {

/** How long a listener that takes nothing is waited for. */
constexpr timeval longestWait{5, 0};

/** @throws std::runtime_error */
std::string systemAddress(const std::string& address) {
  if (address.size() < 2 || (address[0] != '/' && address[0] != '@')) {
    throw std::runtime_error("it is neither a path nor an abstract name");
  }
  if (address.size() >= sizeof(sockaddr_un::sun_path)) throw std::runtime_error("it is too long");
  std::string raw = address;
  if (raw[0] == '@') raw[0] = '\0';
  return raw;
}

}  // namespace

NotifySocket::NotifySocket(const std::string& address) {
  if (address.empty()) return;
  address_ = systemAddress(address);
  descriptor_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), "socket");
  setsockopt(descriptor_, SOL_SOCKET, SO_SNDTIMEO, &longestWait, sizeof longestWait);
}

NotifySocket::~NotifySocket() {
  if (isThere()) close(descriptor_);
}

bool NotifySocket::trySend(const std::string& text) const { return send(text, MSG_DONTWAIT); }

bool NotifySocket::send(const std::string& text, int flags) const {
  if (!isThere()) return false;
  sockaddr_un to{};
  to.sun_family = AF_UNIX;
  std::memcpy(to.sun_path, address_.data(), address_.size());
  // An abstract name is as long as it is told to be; a path ends with its zero.
  const std::size_t zero = address_[0] == '\0' ? 0 : 1;
  const auto length =
      static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + address_.size() + zero);
  const auto* const destination = reinterpret_cast<const sockaddr*>(&to);
  return sendto(descriptor_, text.data(), text.size(), flags | MSG_NOSIGNAL, destination, length) ==
         static_cast<ssize_t>(text.size());
}

}  // namespace zerva
