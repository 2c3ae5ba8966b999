#include "runtime/libClientUtils/bus/UnixSocket.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "runtime/libClientUtils/bus/BusId.h"

namespace zerva {

namespace {

bool fill(sockaddr_un& address, const std::string& path) {
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) {
    errno = ENAMETOOLONG;
    return false;
  }
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  return true;
}

FileDescriptor makeSocket() {
  return FileDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

const sockaddr* asAddress(const sockaddr_un& address) {
  return reinterpret_cast<const sockaddr*>(&address);
}

}  // namespace

FileDescriptor listenAt(const std::string& path) {
  sockaddr_un address{};
  FileDescriptor socket = fill(address, path) ? makeSocket() : FileDescriptor();
  if (socket && (::bind(socket.get(), asAddress(address), sizeof address) != 0 ||
                 ::listen(socket.get(), SOMAXCONN) != 0)) {
    return {};
  }
  return socket;
}

FileDescriptor connectTo(const std::string& path) {
  sockaddr_un address{};
  FileDescriptor socket = fill(address, path) ? makeSocket() : FileDescriptor();
  if (socket && ::connect(socket.get(), asAddress(address), sizeof address) != 0) {
    const int error = errno;
    socket.reset();
    errno = error;
  }
  return socket;
}

FileDescriptor acceptFrom(int listening) {
  return FileDescriptor(::accept4(listening, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
}

std::optional<Credentials> credentialsOf(int socket) {
  ucred credentials{};
  socklen_t size = sizeof credentials;
  if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0) {
    return std::nullopt;
  }
  return Credentials{credentials.pid, credentials.uid};
}

bool isTheProcess(int socket, const std::string& id) {
  const auto peer = credentialsOf(socket);
  return peer && peer->user == ::geteuid() && peer->process == processOf(id);
}

}  // namespace zerva
