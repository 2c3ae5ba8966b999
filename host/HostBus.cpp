#include "host/HostBus.h"

#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "host/EndRequest.h"
#include "runtime/libClientUtils/ChannelDirectory.h"

namespace zerva {
namespace {

const char* const kVariable = "ZERVA_BUS";
const char* const kOwnPrefix = "zerva-bus-";

// One that was made a moment ago may be about to be used.
constexpr std::chrono::minutes kSurelyInUse{1};

// How often a channel is looked for that is waited for.
constexpr std::chrono::milliseconds kLook{20};

std::string environment(const char* name) {
  const char* const value = ::getenv(name);
  return value != nullptr ? value : "";
}

/** @returns where directories of an own bus are made, the preferred place first. */
std::vector<std::string> places() {
  std::vector<std::string> all;
  if (std::string runtime = environment("XDG_RUNTIME_DIR"); !runtime.empty()) {
    all.push_back(std::move(runtime));
  }
  std::error_code none;
  all.push_back(std::filesystem::temp_directory_path(none));
  all.emplace_back("/tmp");
  return all;
}

bool isAbandoned(const std::filesystem::directory_entry& entry) {
  std::error_code error;
  const auto changed = std::filesystem::last_write_time(entry.path(), error);
  return !error && entry.path().filename().string().rfind(kOwnPrefix, 0) == 0 &&
         std::filesystem::file_time_type::clock::now() - changed > kSurelyInUse;
}

/** Removes the directories of hosts that were killed. */
void sweep(const std::string& place) {
  std::error_code error;
  for (auto entry = std::filesystem::directory_iterator(place, error);
       !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
    if (!isAbandoned(*entry)) continue;
    try {
      Bus::removeIfAbandoned(entry->path());
    } catch (const std::exception&) {
      // Somebody else's, or no directory at all: it stays.
    }
  }
}

std::string makeDirectory(const std::string& place) {
  std::string path = place + "/" + kOwnPrefix + "XXXXXX";
  if (::mkdtemp(path.data()) == nullptr) {
    throw std::runtime_error("no directory can be made in " + place + ": " +
                             std::generic_category().message(errno));
  }
  return path;
}

}  // namespace

HostBus::HostBus(const std::string& directory) {
  const std::string wanted = directory.empty() ? environment(kVariable) : directory;
  if (wanted.empty()) {
    openOwn();
  } else {
    // Started processes may run elsewhere.
    const std::string path = std::filesystem::absolute(wanted);
    ::setenv(kVariable, path.c_str(), 1);
    bus_ = std::make_unique<Bus>(path);
  }
}

HostBus::~HostBus() {
  bus_.reset();
  removeOwnDirectory();
}

void HostBus::openOwn() {
  for (const std::string& place : places()) {
    try {
      sweep(place);
      ownDirectory_ = makeDirectory(place);
      ::setenv(kVariable, ownDirectory_.c_str(), 1);
      bus_ = std::make_unique<Bus>(ownDirectory_);
      whyNone_.clear();
      return;
    } catch (const std::exception& error) {
      whyNone_ += (whyNone_.empty() ? "" : "; ") + std::string(error.what());
      removeOwnDirectory();
      ownDirectory_.clear();
      ::unsetenv(kVariable);
    }
  }
}

void HostBus::closeToOutside(const std::string& but) {
  if (bus_ != nullptr) bus_->closeToOutside(but);
}

bool HostBus::await(const std::string& channel, std::chrono::milliseconds longest,
                    EndRequest& end) {
  const auto deadline = std::chrono::steady_clock::now() + longest;
  while (ChannelDirectory::instance().find(channel) == nullptr) {
    if (end.made() || std::chrono::steady_clock::now() >= deadline) return false;
    end.wait(kLook);
  }
  return true;
}

void HostBus::removeOwnDirectory() const {
  if (ownDirectory_.empty()) return;
  std::error_code ignored;
  std::filesystem::remove_all(ownDirectory_, ignored);
}

}  // namespace zerva
