#pragma once

#include <optional>
#include <string>

#include "runtime/libClientUtils/bus/FileDescriptor.h"

namespace zerva {

// Sockets of this machine's processes: never waiting, closed on exec. Failures are in `errno`.

/** @returns a socket that is connected to at a path. */
FileDescriptor listenAt(const std::string& path);

/** @returns a socket that is connected to whoever listens at a path. Does not wait. */
FileDescriptor connectTo(const std::string& path);

/** @returns the next one who has connected to a listening socket. */
FileDescriptor acceptFrom(int listening);

/** Who is at the other end. */
struct Credentials {
  int process;
  unsigned user;
};

/** @returns what the system says of the other end. */
std::optional<Credentials> credentialsOf(int socket);

/** @returns whether the other end is this user's, and the process that a bus name tells. */
bool isTheProcess(int socket, const std::string& id);

}  // namespace zerva
