#include "runtime/libClientUtils/bus/BusCore.h"

#include <algorithm>
#include <asio/post.hpp>
#include <asio/steady_timer.hpp>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/Waiting.h"
#include "runtime/libClientUtils/bus/BusId.h"
#include "runtime/libClientUtils/bus/BusLog.h"
#include "runtime/libClientUtils/bus/Frames.h"
#include "runtime/libClientUtils/bus/Leftovers.h"
#include "runtime/libClientUtils/bus/PeerNames.h"
#include "runtime/libClientUtils/bus/RemoteChannel.h"
#include "runtime/libClientUtils/bus/UnixSocket.h"

namespace zerva {

namespace {

// What is still to be sent at the end gets so long, for all processes together.
constexpr std::chrono::milliseconds kFarewell{500};

// A process that was killed gives its sockets back before its locks, or after them.
constexpr unsigned kLooksForLeftover = 6;
constexpr std::chrono::milliseconds kFirstLook{20};

// A process has one bus at a time, and another name each time that it opens it. So many may be
// connected at once; each holds a descriptor, and the beginning of a frame of any length.
constexpr std::ptrdiff_t kNamesOfAProcess = 4;

std::string errorText(int error) { return std::generic_category().message(error); }

}  // namespace

BusCore::BusCore(const std::string& directory)
    : directory_(directory),
      shared_(std::make_shared<BusShared>()),
      ownNames_(directory_, shared_->ownId),
      names_(directory_, shared_->ownId),
      socketFile_(directory_, BusDirectory::socketName(shared_->ownId)),
      listener_(shared_, listen(),
                [this](const std::shared_ptr<Connection>& connection, const std::string& id) {
                  greeted(connection, id);
                }),
      thread_(shared_->context) {
  removeLeftovers(directory_);
  shared_->sockets->start();
  listener_.postStart();
  if (!thread_.start()) {
    throw std::runtime_error(directory_.describe("there is no thread for the bus"));
  }
}

BusCore::~BusCore() = default;

FileDescriptor BusCore::listen() const {
  FileDescriptor socket = listenAt(directory_.socketPath(shared_->ownId));
  if (!socket) {
    throw std::runtime_error(
        directory_.describe("a socket cannot be made in it: " + errorText(errno)));
  }
  return socket;
}

void BusCore::closeToOutside(const std::string& but) {
  {
    const std::lock_guard lock(mutex_);
    // Others read it only behind the flag, so it is not changed after that.
    if (!shared_->closedToOutside) shared_->stillOpen = but;
    shared_->closedToOutside = true;
  }
  ownNames_.closeBut(shared_->stillOpen);
}

std::vector<BusProcess> BusCore::processes() const {
  removeLeftovers(directory_);
  std::vector<BusProcess> all;
  for (const std::string& id : directory_.processes().value_or(std::vector<std::string>())) {
    if (id == shared_->ownId) continue;
    PeerNames names(directory_, id);
    names.refresh();
    BusProcess& process = all.emplace_back(BusProcess{processOf(id), {}});
    for (const auto& [name, since] : names.all()) process.channels.push_back(name);
    std::sort(process.channels.begin(), process.channels.end());
  }
  std::sort(all.begin(), all.end(),
            [](const BusProcess& a, const BusProcess& b) { return a.id < b.id; });
  return all;
}

void BusCore::close() {
  closeToOutside({});
  ownNames_.closeBut({});
  socketFile_.remove();
  std::set<std::shared_ptr<Peer>> all;
  {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    all = all_;
  }
  const auto deadline = Clock::now() + kFarewell;
  for (const auto& peer : all) {
    peer->waitUntilSent(deadline);
  }
  thread_.stop();
  // Here and below this thread does what is the bus thread's to do.
  listener_.close();
  shared_->sockets->close();
  {
    const std::lock_guard lock(mutex_);
    all = all_;
  }
  for (const auto& peer : all) {
    peer->end("the bus of this process was closed before " + describeProcess(peer->id()) +
              " answered");
  }
  const Waiting waiting("what has come from other processes to be handed on");
  for (const auto& peer : all) {
    peer->waitForReader();
  }
  // What was still to be called is called, and finds everything closed.
  shared_->context->restart();
  shared_->context->poll();
}

void BusCore::servedMayHaveChanged(const std::string& name) {
  const std::string error =
      ownNames_.update(name, [&] { return ChannelDirectory::instance().isServedHere(name); });
  if (!error.empty()) {
    BUS_LOG(2, "channel '%s' is served in this process only: %s", name.c_str(), error.c_str());
  }
}

std::shared_ptr<Destination> BusCore::find(const std::string& name) {
  std::set<std::string> except;
  while (!closed_ && name.size() <= kMaximumName) {
    auto found = names_.find(name, except);
    if (!found) {
      return nullptr;
    }
    Way way = reach(*found->id);
    if (way.peer != nullptr) {
      return std::make_shared<RemoteChannel>(std::move(way.peer), std::move(*found));
    }
    if (!way.unreachable.empty()) {
      return std::make_shared<UnreachableChannel>(std::move(way.unreachable), std::move(*found));
    }
    except.insert(*found->id);
  }
  return nullptr;
}

BusCore::Way BusCore::reach(const std::string& id) {
  std::unique_lock lock(mutex_);
  if (closed_) {
    return {};
  }
  if (excluded_.contains(id)) {
    return {nullptr, describeProcess(id) + " speaks another version of the bus"};
  }
  const auto known = peers_.find(id);
  if (known != peers_.end() && known->second->takes()) {
    return {known->second, {}};
  }
  FileDescriptor socket = connectTo(directory_.socketPath(id));
  if (!socket) {
    const int error = errno;
    lock.unlock();
    if (error != ECONNREFUSED && error != ENOENT) {
      return {nullptr, describeProcess(id) + " cannot be reached: " + errorText(error)};
    }
    removeLeftover(directory_, id);
    return {};
  }
  if (!isTheProcess(socket.get(), id)) {
    lock.unlock();
    BUS_LOG(3, "what listens as %s is another process", describeProcess(id).c_str());
    return {};
  }
  auto connection =
      std::make_shared<Connection>(shared_->sockets, std::move(socket), kMaximumGreeting);
  auto peer = newPeer(id);
  try {
    peer->begin(std::move(connection));
  } catch (...) {
    // Who asks next begins anew, and does not wait for what never comes.
    forget(peer);
    throw;
  }
  return {std::move(peer), {}};
}

/** A process has connected. On the bus thread. */
void BusCore::greeted(const std::shared_ptr<Connection>& connection, const std::string& id) {
  std::shared_ptr<Peer> peer;
  {
    std::unique_lock lock(mutex_);
    if (closed_) {
      connection->close();
      return;
    }
    const auto known = peers_.find(id);
    const auto offer = known != peers_.end() ? known->second->considers() : Peer::Offer::Replace;
    if (offer == Peer::Offer::Cross) {
      connection->sendGreeting(encodeHead(CrossedFrame{}));
      connection->close();
      return;
    }
    if (offer == Peer::Offer::Replace && hasTooManyNames(processOf(id))) {
      lock.unlock();
      connection->close();
      BUS_LOG(3, "a connection is refused: %s is connected under %td names already",
              describeProcess(id).c_str(), kNamesOfAProcess);
      return;
    }
    peer = offer == Peer::Offer::Adopt ? known->second : newPeer(id);
  }
  if (const auto error = exceptionOf([&] { peer->adopt(connection); })) {
    connection->close();
    BUS_LOG(2, "the connection of %s is given up: %s", describeProcess(id).c_str(), error->c_str());
    peer->end("the connection to " + describeProcess(id) + " was given up: " + *error);
  }
}

/** Under the lock, on the bus thread. */
bool BusCore::hasTooManyNames(int process) const {
  const auto names = std::count_if(all_.begin(), all_.end(), [process](const auto& peer) {
    return processOf(peer->id()) == process && peer->isHeld();
  });
  return names >= kNamesOfAProcess;
}

/** Under the lock. */
std::shared_ptr<Peer> BusCore::newPeer(const std::string& id) {
  auto peer = std::make_shared<Peer>(id, shared_,
                                     [this](const std::shared_ptr<Peer>& ended, bool otherVersion) {
                                       peerEnded(ended, otherVersion);
                                     });
  const auto kept = all_.insert(peer).first;
  try {
    peers_[id] = peer;
  } catch (...) {
    all_.erase(kept);
    throw;
  }
  return peer;
}

/** Under the lock. */
void BusCore::forget(const std::shared_ptr<Peer>& peer) {
  all_.erase(peer);
  const auto known = peers_.find(peer->id());
  if (known != peers_.end() && known->second == peer) {
    peers_.erase(known);
  }
}

/** On the bus thread. */
void BusCore::peerEnded(const std::shared_ptr<Peer>& peer, bool otherVersion) {
  {
    const std::lock_guard lock(mutex_);
    forget(peer);
    if (otherVersion) {
      excluded_.insert(peer->id());
    }
  }
  if (!closed_) {
    lookForLeftover(peer->id(), kLooksForLeftover);
  }
}

void BusCore::lookForLeftover(const std::string& id, unsigned triesLeft) {
  if (removeLeftover(directory_, id)) {
    names_.forget(id);
    const std::lock_guard lock(mutex_);
    excluded_.erase(id);
    return;
  }
  if (triesLeft == 0) {
    return;
  }
  const auto timer = std::make_shared<asio::steady_timer>(
      *shared_->context, kFirstLook * (1U << (kLooksForLeftover - triesLeft)));
  timer->async_wait([this, timer, id, triesLeft](asio::error_code error) {
    if (!error && !closed_) {
      lookForLeftover(id, triesLeft - 1);
    }
  });
}

}  // namespace zerva
