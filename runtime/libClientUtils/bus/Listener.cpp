#include "runtime/libClientUtils/bus/Listener.h"

#include <unistd.h>

#include <asio/post.hpp>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <utility>
#include <variant>

#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/bus/BusId.h"
#include "runtime/libClientUtils/bus/BusLog.h"
#include "runtime/libClientUtils/bus/Frames.h"

namespace zerva {

namespace {

// Whoever connects says at once who it is. Of those who do not, so many are kept.
constexpr std::size_t kStrangers = 64;

// Trying again at once would help nobody when there are no descriptors left.
constexpr std::chrono::milliseconds kPause{100};

}  // namespace

Listener::Listener(std::shared_ptr<const BusShared> bus, FileDescriptor socket, Greeted greeted)
    : bus_(std::move(bus)),
      greeted_(std::move(greeted)),
      socket_(*bus_->context, socket.get()),
      later_(*bus_->context) {
  socket.release();
}

void Listener::postStart() {
  asio::post(*bus_->context, [this] { await(); });
}

void Listener::close() {
  asio::error_code ignored;
  socket_.close(ignored);
  later_.cancel();
  for (const auto& stranger : strangers_) {
    stranger->close();
  }
  strangers_.clear();
}

void Listener::await() {
  if (!socket_.is_open()) {
    return;
  }
  const auto error = exceptionOf([this] {
    socket_.async_wait(asio::posix::stream_descriptor::wait_read, [this](asio::error_code failed) {
      if (!failed && socket_.is_open()) {
        acceptAll();
      }
    });
  });
  if (error) {
    acceptLater(*error);
  }
}

void Listener::acceptAll() {
  for (;;) {
    FileDescriptor socket = acceptFrom(socket_.native_handle());
    if (socket) {
      // Of one that there is no memory for the others are not to know.
      if (const auto error = exceptionOf([&] { accepted(std::move(socket)); })) {
        BUS_LOG(2, "a connection is given up: %s", error->c_str());
      }
    } else if (errno == EAGAIN) {
      await();
      return;
    } else if (errno != EINTR && errno != ECONNABORTED) {
      acceptLater(std::generic_category().message(errno));
      return;
    }
  }
}

void Listener::acceptLater(const std::string& why) {
  BUS_LOG(2, "a connection cannot be taken now: %s", why.c_str());
  later_.expires_after(kPause);
  later_.async_wait([this](asio::error_code error) {
    if (!error) {
      await();
    }
  });
}

void Listener::accepted(FileDescriptor socket) {
  const auto credentials = credentialsOf(socket.get());
  if (!credentials || credentials->user != ::geteuid()) {
    BUS_LOG(3, "a connection of another user is refused");
    return;
  }
  if (strangers_.size() >= kStrangers) {
    dismiss(strangers_.begin(), "it does not say who it is");
  }
  const auto stranger = strangers_.insert(
      strangers_.end(),
      std::make_shared<Connection>(bus_->sockets, std::move(socket), kMaximumGreeting));
  const int process = credentials->process;
  const auto error = exceptionOf([&] {
    (*stranger)->setHandler({[this, stranger, process](std::string_view body, const Payload&) {
                               takeGreeting(stranger, process, body);
                             },
                             [this, stranger](const std::string& why) { dismiss(stranger, why); },
                             {}},
                            kMaximumGreeting);
    (*stranger)->start();
  });
  if (error) {
    dismiss(stranger, *error);
  }
}

void Listener::takeGreeting(Strangers::iterator stranger, int process, std::string_view body) {
  const Frame frame = decodeFrame(body);
  const auto* const hello = std::get_if<HelloFrame>(&frame);
  if (hello == nullptr) {
    dismiss(stranger, "it does not say hello");
  } else if (hello->version != kWireVersion) {
    // It learns why from the version in the answer.
    (*stranger)->sendGreeting(encodeHead(WelcomeFrame{kWireVersion, bus_->ownId}));
    dismiss(stranger, "process " + std::to_string(process) + " speaks version " +
                          std::to_string(hello->version) + " of the bus, not " +
                          std::to_string(kWireVersion));
  } else if (!isBusId(hello->id) || processOf(hello->id) != process || hello->id == bus_->ownId) {
    dismiss(stranger, "process " + std::to_string(process) + " says that it is somebody else");
  } else {
    const auto connection = std::move(*stranger);
    strangers_.erase(stranger);
    // It is no stranger any more, so this is not to reach the connection's own handler.
    if (const auto error = exceptionOf([&] { greeted_(connection, std::string(hello->id)); })) {
      connection->close();
      BUS_LOG(2, "the connection of process %d is given up: %s", process, error->c_str());
    }
  }
}

/** @param why empty when it went away by itself. */
void Listener::dismiss(Strangers::iterator stranger, const std::string& why) {
  const auto connection = std::move(*stranger);
  strangers_.erase(stranger);
  connection->close();
  if (!why.empty()) {
    BUS_LOG(3, "a connection is refused: %s", why.c_str());
  }
}

}  // namespace zerva
