#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "runtime/libClientUtils/bus/FileDescriptor.h"
#include "runtime/libClientUtils/bus/FrameBuffer.h"
#include "runtime/libClientUtils/bus/Frames.h"
#include "runtime/libClientUtils/bus/NameRecords.h"
#include "tests/platform/Bus/BusWorld.h"
#include "tests/support/FileText.h"

namespace zerva {

inline sockaddr_un addressOf(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  return address;
}

/** A process that talks to the bus in its own way. It is this one, under another bus name. */
class Stranger {
 public:
  explicit Stranger(int socket) : socket_(socket) {}
  explicit Stranger(const std::string& path) : socket_(::socket(AF_UNIX, SOCK_STREAM, 0)) {
    const sockaddr_un address = addressOf(path);
    EXPECT_EQ(::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  }
  ~Stranger() { ::close(socket_); }
  Stranger(const Stranger&) = delete;
  Stranger& operator=(const Stranger&) = delete;

  void say(const std::string& bytes) const {
    ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
  }

  /** The next frame, without its length; empty when the other side ends the connection. */
  std::string hear() {
    for (;;) {
      std::string_view body;
      Payload apart;
      if (frames_.next(body, apart) == FrameBuffer::Next::Whole) return std::string(body);
      pollfd ready{socket_, POLLIN, 0};
      if (::poll(&ready, 1, static_cast<int>(patience().count())) != 1) return "nothing came";
      char chunk[4096];
      const ssize_t got = ::recv(socket_, chunk, sizeof chunk, 0);
      if (got <= 0) return "";
      frames_.append({chunk, static_cast<std::size_t>(got)});
    }
  }

  /** Whether the other side ends the connection, whatever it says before. */
  bool isDismissed() {
    for (;;) {
      const std::string heard = hear();
      if (heard.empty() || heard == "nothing came") return heard.empty();
    }
  }

 private:
  const int socket_;
  FrameBuffer frames_{kMaximumFrame};
};

class AStranger : public BusWorld {
 protected:
  AStranger() {
    serve("/echo", Mode::MT, [](const std::string& request) { return request; });
  }

  std::string socketPath() const {
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
      if (entry.path().extension() == ".sock" && entry.path().stem() != id) return entry.path();
    }
    return "no socket";
  }

  /** The socket of this process' bus, before anybody else listens. */
  std::string ownSocket() const { return ownSocket_; }

  std::string hello(std::uint16_t version = kWireVersion) const {
    return encodeHead(HelloFrame{version, id});
  }

  static std::string request(std::uint32_t wireId, const std::string& to, const std::string& data) {
    return encodeHead(RequestFrame{wireId, 1, {}, {}, {1, {2}, "/stranger", to, data}}) + data;
  }

  /** The bus still does its work. */
  void expectWorking() const {
    Stranger friendly(socketPath());
    friendly.say(encodeHead(HelloFrame{kWireVersion, otherId}));
    friendly.hear();
    friendly.say(request(1, "/echo", "well"));
    EXPECT_EQ(friendly.hear(), (encodeHead(ReplyFrame{1, "well"}) + "well").substr(4));
  }

  /** A name of this process that others find, and whoever listens there. */
  int listenAs(const std::string& name, const std::string& channel) {
    const int listening = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_un address = addressOf(path / (name + ".sock"));
    EXPECT_EQ(::bind(listening, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(::listen(listening, 16), 0);
    const auto names =
        writeFile(path / (name + ".names"), journalHeader() + servedRecord(channel, 1));
    // As a process does that lives.
    lock = FileDescriptor(::open(names.c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(::flock(lock.get(), LOCK_EX | LOCK_NB), 0);
    return listening;
  }

  const std::string id = std::to_string(::getpid()) + "-0123456789abcdef";
  const std::string otherId = std::to_string(::getpid()) + "-fedcba9876543210";
  FileDescriptor lock;
  Bus sut{path};

 private:
  const std::string ownSocket_ = socketPath();
};

}  // namespace zerva
