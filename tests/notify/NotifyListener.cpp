#include "tests/notify/NotifyListener.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <stdexcept>

#include "tests/support/WaitUntil.h"

namespace zerva {

NotifyListener::NotifyListener(const std::string& address)
    : descriptor_(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
  sockaddr_un own{};
  own.sun_family = AF_UNIX;
  std::memcpy(own.sun_path, address.data(), address.size());
  std::size_t length = offsetof(sockaddr_un, sun_path) + address.size();
  if (address[0] == '@') {
    own.sun_path[0] = '\0';
  } else {
    ++length;
  }
  if (bind(descriptor_, reinterpret_cast<sockaddr*>(&own), static_cast<socklen_t>(length)) != 0) {
    throw std::runtime_error("nothing can be bound to " + address);
  }
}

NotifyListener::~NotifyListener() { close(descriptor_); }

bool NotifyListener::waitFor(const std::string& text, std::chrono::milliseconds deadline) {
  return waitUntil([&] { return has(text); }, deadline);
}

bool NotifyListener::waitForAnother(const std::string& text, std::chrono::milliseconds deadline) {
  take();
  const std::size_t first = messages_.size();
  return waitUntil(
      [&] {
        take();
        return among(text, first);
      },
      deadline);
}

bool NotifyListener::has(const std::string& text) {
  take();
  return among(text, 0);
}

const std::vector<std::string>& NotifyListener::messages() {
  take();
  return messages_;
}

void NotifyListener::take() {
  std::array<char, 4096> buffer;
  ssize_t size = 0;
  while ((size = recv(descriptor_, buffer.data(), buffer.size(), 0)) > 0) {
    messages_.emplace_back(buffer.data(), static_cast<std::size_t>(size));
  }
}

bool NotifyListener::among(const std::string& text, std::size_t first) {
  return std::any_of(
      messages_.begin() + static_cast<std::ptrdiff_t>(first), messages_.end(),
      [&](const std::string& message) { return message.find(text) != std::string::npos; });
}

}  // namespace zerva
