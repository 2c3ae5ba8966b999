#include "bench/ours/TwoHosts.h"

#include <filesystem>

#include "bench/ours/TempDirectory.h"

namespace zerva::bench {

namespace {

void serve(const std::string& directory, const std::string& mode, const OtherProcess::Stay& stay) {
  Bus bus(directory);
  EchoWorld one(mode);
  stay.untilOver();
  bus.closeToOutside();
  one.world.end();
}

}  // namespace

TwoHosts::TwoHosts(const std::string& mode)
    : directory_(makeTempDirectory()),
      other_([&](const OtherProcess::Stay& stay) { serve(directory_, mode, stay); }) {
  other_.awaitReady();
  bus_ = std::make_unique<Bus>(directory_);
  world_ = std::make_unique<World>(WorldParts{.registry = false});
  echo_ = &world_->find(interfaceName(0));
}

TwoHosts::~TwoHosts() {
  world_->end();
  world_.reset();
  bus_.reset();
  std::error_code ignored;
  std::filesystem::remove_all(directory_, ignored);
}

}  // namespace zerva::bench
