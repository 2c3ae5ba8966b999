#include "runtime/libClientUtils/bus/OwnNames.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "runtime/libClientUtils/bus/Frames.h"
#include "runtime/libClientUtils/bus/MonotonicStamp.h"

namespace zerva {

namespace {

// Less than this is not worth a new file.
constexpr std::size_t kLittle = std::size_t{64} * 1024;

std::string errorText(int error) { return std::generic_category().message(error); }

bool writeAll(int file, const std::string& text) {
  errno = 0;
  const ssize_t written = ::write(file, text.data(), text.size());
  if (written >= 0 && static_cast<std::size_t>(written) < text.size() && errno == 0) {
    errno = ENOSPC;
  }
  return written == static_cast<ssize_t>(text.size());
}

}  // namespace

OwnNames::OwnNames(const BusDirectory& directory, std::string id)
    : directory_(directory), id_(std::move(id)) {
  if (const std::string error = rewrite(); !error.empty()) {
    throw std::runtime_error(directory_.describe(error));
  }
}

OwnNames::~OwnNames() { directory_.remove(BusDirectory::journalName(id_)); }

std::string OwnNames::update(const std::string& name, const std::function<bool()>& isServed) {
  const std::lock_guard lock(mutex_);
  const bool served = isServed();
  if (closed_ || served == names_.contains(name)) {
    return {};
  }
  if (served) {
    return add(name);
  }
  remove(name);
  return {};
}

void OwnNames::closeBut(const std::string& name) {
  const std::lock_guard lock(mutex_);
  closed_ = true;
  std::erase_if(names_, [&](const auto& served) { return served.first != name; });
  if (!rewrite().empty()) {
    // Whatever others still read, they find nobody under it.
    directory_.remove(BusDirectory::journalName(id_));
  }
}

std::string OwnNames::add(const std::string& name) {
  if (name.size() > kMaximumName) {
    return "it has " + std::to_string(name.size()) + " bytes, more than " +
           std::to_string(kMaximumName);
  }
  if (names_.size() >= kMaximumNames || nameBytes_ + name.size() > kMaximumNameBytes) {
    return "this process serves too many names";
  }
  compactIfWorthwhile();
  const std::uint64_t now = monotonicStamp();
  const std::string record = servedRecord(name, now);
  // First, since there may be no memory for it: what is written down must be known here.
  ServedNames added;
  added.emplace(name, now);
  names_.reserve(names_.size() + 1);
  std::string error = write(record);
  if (error.empty()) {
    names_.insert(added.extract(added.begin()));
    nameBytes_ += name.size();
  }
  return error;
}

void OwnNames::remove(const std::string& name) {
  names_.erase(name);
  nameBytes_ -= name.size();
  // When there is no room for one more record there may be for all that still hold.
  if (!write(unservedRecord(name, monotonicStamp())).empty()) {
    rewrite();
  }
  compactIfWorthwhile();
}

std::string OwnNames::write(const std::string& record) {
  if (writeAll(file_.get(), record)) {
    size_ += record.size();
    return {};
  }
  const int error = errno;
  // Half a record would make the ones behind it unreadable.
  if (::ftruncate(file_.get(), static_cast<off_t>(size_)) != 0) {
    rewrite();
  }
  return "it cannot be written down: " + errorText(error);
}

std::string OwnNames::rewrite() {
  std::string text = journalHeader();
  for (const auto& [name, since] : names_) {
    text += servedRecord(name, since);
  }
  return replaceFile(text);
}

/** Puts a complete, locked file into the place of the one that is there. */
std::string OwnNames::replaceFile(const std::string& text) {
  constexpr int kTries = 10;
  // Both before there is a file that only this function knows of.
  const std::string unfinished = BusDirectory::unfinishedName(id_);
  const std::string finished = BusDirectory::journalName(id_);
  std::string error;
  for (int left = kTries; left > 0; --left) {
    FileDescriptor file = directory_.open(unfinished, O_RDWR | O_CREAT | O_APPEND | O_TRUNC);
    if (!file) {
      return "its list of names cannot be made: " + errorText(errno);
    }
    // Somebody who removes leftovers may see the file before it is locked, and take it away.
    const bool placed = ::flock(file.get(), LOCK_EX | LOCK_NB) == 0 && writeAll(file.get(), text) &&
                        directory_.rename(unfinished, finished);
    if (placed) {
      file_ = std::move(file);
      size_ = text.size();
      return {};
    }
    error = "its list of names cannot be written: " + errorText(errno);
    directory_.remove(unfinished);
  }
  return error;
}

void OwnNames::compactIfWorthwhile() {
  const std::size_t overhead = servedRecord({}, 0).size();
  const std::size_t needed = nameBytes_ + names_.size() * overhead;
  if (size_ > 2 * needed + kLittle) {
    rewrite();
  }
}

}  // namespace zerva
