#include "runtime/libClientUtils/bus/Bus.h"

#include <unistd.h>

#include <atomic>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "runtime/libClientUtils/ChannelDirectory.h"
#include "runtime/libClientUtils/bus/BusCore.h"
#include "runtime/libClientUtils/bus/BusDirectory.h"
#include "runtime/libClientUtils/bus/BusLog.h"
#include "runtime/libClientUtils/bus/Leftovers.h"

namespace zerva {

namespace {

std::atomic<bool> there{false};

/** Of two that are opened at the same moment one is refused. */
class OnlyOne {
 public:
  explicit OnlyOne(const std::string& directory) {
    if (there.exchange(true)) {
      throw std::runtime_error("bus directory '" + directory +
                               "': this process has opened a bus already");
    }
  }
  ~OnlyOne() {
    if (!kept_) {
      there = false;
    }
  }
  OnlyOne(const OnlyOne&) = delete;
  OnlyOne& operator=(const OnlyOne&) = delete;
  void keep() { kept_ = true; }

 private:
  bool kept_ = false;
};

std::shared_ptr<BusCore> open(const std::string& directory) {
  OnlyOne onlyOne(directory);
  try {
    auto core = std::make_shared<BusCore>(directory);
    onlyOne.keep();
    return core;
  } catch (const std::system_error& error) {
    throw std::runtime_error("bus directory '" + directory + "': " + error.what());
  }
}

}  // namespace

Bus::Bus(const std::string& directory) : core_(open(directory)) {
  ChannelDirectory& channels = ChannelDirectory::instance();
  channels.setRemoteChannels(core_);
  // Those that began to be served before; each that begins from here on says so itself.
  for (const std::string& name : channels.servedHere()) {
    channels.servedMayHaveChanged(name);
  }
  if (loggingOnAppUni("Bus", 6)) {
    BUS_LOG(6, "the bus in %s is open", core_->directory().c_str());
  }
}

Bus::~Bus() {
  ChannelDirectory::instance().setRemoteChannels(nullptr);
  core_->close();
  there = false;
}

void Bus::closeToOutside(const std::string& but) { core_->closeToOutside(but); }

std::vector<BusProcess> Bus::processes() const { return core_->processes(); }

void Bus::removeIfAbandoned(const std::string& directory) {
  const BusDirectory abandoned(directory);
  removeLeftovers(abandoned);
  // The system removes no directory that holds something.
  ::rmdir(abandoned.path().c_str());
}

const std::string& Bus::directory() const { return core_->directory(); }

}  // namespace zerva
