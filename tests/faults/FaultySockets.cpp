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

using SendMessage = ssize_t (*)(int, const msghdr*, int);

/** @returns whether the call fails. */
bool sendFails() {
  if (hits(Kind::Send)) {
    errno = ECONNRESET;
    return true;
  }
  if (hits(Kind::SendFull)) {
    errno = EAGAIN;
    return true;
  }
  return false;
}

ssize_t sendOrFail(const char* name, int socket, const msghdr* message, int flags) {
  const auto send = reinterpret_cast<SendMessage>(zerva::fault::systems(name));
  if (sendFails()) return -1;
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
ssize_t faultySend(int socket, const void* from, std::size_t size, int flags) ZERVA_FAULTY("send");
ssize_t faultySendMessage(int socket, const msghdr* message, int flags) ZERVA_FAULTY("sendmsg");
ssize_t faultySendMessage64(int socket, const msghdr* message, int flags)
    ZERVA_FAULTY("__sendmsg64");
ssize_t faultyReceive(int socket, void* to, std::size_t size, int flags) ZERVA_FAULTY("recv");
ssize_t faultyReceiveMessage(int socket, msghdr* message, int flags) ZERVA_FAULTY("recvmsg");
ssize_t faultyReceiveMessage64(int socket, msghdr* message, int flags) ZERVA_FAULTY("__recvmsg64");

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

ssize_t faultySend(int socket, const void* from, std::size_t size, int flags) {
  using Send = ssize_t (*)(int, const void*, std::size_t, int);
  const auto send = reinterpret_cast<Send>(zerva::fault::systems("send"));
  if (sendFails()) return -1;
  return send(socket, from, hits(Kind::SendPart) ? 1 : size, flags);
}

ssize_t faultySendMessage(int socket, const msghdr* message, int flags) {
  return sendOrFail("sendmsg", socket, message, flags);
}

ssize_t faultySendMessage64(int socket, const msghdr* message, int flags) {
  return sendOrFail("__sendmsg64", socket, message, flags);
}

ssize_t faultyReceive(int socket, void* to, std::size_t size, int flags) {
  return callOr<ssize_t>(Kind::Receive, ECONNRESET, "recv", socket, to, size, flags);
}

ssize_t faultyReceiveMessage(int socket, msghdr* message, int flags) {
  return callOr<ssize_t>(Kind::Receive, ECONNRESET, "recvmsg", socket, message, flags);
}

ssize_t faultyReceiveMessage64(int socket, msghdr* message, int flags) {
  return callOr<ssize_t>(Kind::Receive, ECONNRESET, "__recvmsg64", socket, message, flags);
}
}
