// Sockets that can fail.

#include <sys/socket.h>
#include <sys/types.h>
#include <sys/uio.h>

#include <cstddef>

#include "tests/faults/FaultyCalls.h"

namespace {

using zerva::fault::callOr;
using zerva::fault::hits;
using zerva::fault::Kind;

ssize_t sendOrFail(const char* name, int socket, const msghdr* message, int flags) {
  using Send = ssize_t (*)(int, const msghdr*, int);
  const auto send = reinterpret_cast<Send>(zerva::fault::systems(name));
  if (hits(Kind::Send)) {
    errno = ECONNRESET;
    return -1;
  }
  if (hits(Kind::SendFull)) {
    errno = EAGAIN;
    return -1;
  }
  if (!hits(Kind::SendPart)) return send(socket, message, flags);
  iovec part = message->msg_iov[0];
  part.iov_len = 1;
  msghdr short_{};
  short_.msg_iov = &part;
  short_.msg_iovlen = 1;
  return send(socket, &short_, flags);
}

}  // namespace

extern "C" {

int faultySocket(int domain, int type, int protocol) ZERVA_FAULTY("socket");
int faultyBind(int socket, const sockaddr* address, socklen_t size) ZERVA_FAULTY("bind");
int faultyListen(int socket, int backlog) ZERVA_FAULTY("listen");
int faultyConnect(int socket, const sockaddr* address, socklen_t size) ZERVA_FAULTY("connect");
int faultyAccept(int socket, sockaddr* address, socklen_t* size, int flags) ZERVA_FAULTY("accept4");
ssize_t faultySend(int socket, const msghdr* message, int flags) ZERVA_FAULTY("sendmsg");
ssize_t faultySend64(int socket, const msghdr* message, int flags) ZERVA_FAULTY("__sendmsg64");
ssize_t faultyReceive(int socket, void* to, std::size_t size, int flags) ZERVA_FAULTY("recv");

int faultySocket(int domain, int type, int protocol) {
  return callOr<int>(Kind::Socket, EMFILE, "socket", domain, type, protocol);
}

int faultyBind(int socket, const sockaddr* address, socklen_t size) {
  return callOr<int>(Kind::Bind, ENOSPC, "bind", socket, address, size);
}

int faultyListen(int socket, int backlog) {
  return callOr<int>(Kind::Listen, ENOBUFS, "listen", socket, backlog);
}

int faultyConnect(int socket, const sockaddr* address, socklen_t size) {
  return callOr<int>(Kind::Connect, EAGAIN, "connect", socket, address, size);
}

int faultyAccept(int socket, sockaddr* address, socklen_t* size, int flags) {
  return callOr<int>(Kind::Accept, EMFILE, "accept4", socket, address, size, flags);
}

ssize_t faultySend(int socket, const msghdr* message, int flags) {
  return sendOrFail("sendmsg", socket, message, flags);
}

ssize_t faultySend64(int socket, const msghdr* message, int flags) {
  return sendOrFail("__sendmsg64", socket, message, flags);
}

ssize_t faultyReceive(int socket, void* to, std::size_t size, int flags) {
  return callOr<ssize_t>(Kind::Receive, ECONNRESET, "recv", socket, to, size, flags);
}
}
