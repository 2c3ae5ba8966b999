#include "runtime/libClientUtils/bus/PeerNames.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>
#include <vector>

#include "runtime/libClientUtils/bus/BusId.h"

namespace zerva {

PeerNames::PeerNames(const BusDirectory& directory, std::string_view id)
    : directory_(directory), id_(sharedName(id)) {}

std::string PeerNames::refresh() {
  std::string complaint;
  off_t size = 0;
  if (!openCurrent(size, complaint)) {
    return complaint;
  }
  // Nearly always there is nothing new.
  return size != offset_ ? readOn() : std::string();
}

std::optional<std::uint64_t> PeerNames::servedSince(const std::string& name) const {
  const auto found = parser_.names().find(name);
  return found != parser_.names().end() ? std::optional(found->second) : std::nullopt;
}

/**
 * Sees to it that the file which has the name now is open.
 *
 * @param size gets how long it is.
 * @returns whether it can be read.
 */
bool PeerNames::openCurrent(off_t& size, std::string& complaint) {
  struct stat status {};
  // The owner puts a new file into its place when much of the old one holds no more.
  if (file_ && ::fstat(file_.get(), &status) == 0 && status.st_nlink > 0) {
    size = status.st_size;
    return true;
  }
  FileDescriptor current = directory_.open(BusDirectory::journalName(*id_), O_RDONLY);
  if (!current && errno != ENOENT) {
    // For lack of descriptors, for instance: what was known is better than nothing.
    complaint = complain("its file cannot be read: " + std::generic_category().message(errno));
    return false;
  }
  const bool knewIt = static_cast<bool>(file_);
  file_ = std::move(current);
  offset_ = 0;
  parser_ = {};
  if (knewIt) {
    complained_ = false;
  }
  if (file_ && (::fstat(file_.get(), &status) != 0 || !S_ISREG(status.st_mode) ||
                status.st_uid != ::geteuid())) {
    complaint = complain("its file cannot be read: it is no file of this user");
    file_.reset();
  }
  size = status.st_size;
  return static_cast<bool>(file_);
}

/** @returns the text of a complaint, once for each file. */
std::string PeerNames::complain(const std::string& cause) {
  if (std::exchange(complained_, true)) {
    return {};
  }
  return "the names of " + describeProcess(*id_) + " are not known, " + cause;
}

std::string PeerNames::readOn() {
  constexpr std::size_t kChunk = std::size_t{64} * 1024;
  char first[256];
  ssize_t got = ::pread(file_.get(), first, sizeof first, offset_);
  if (got <= 0) {
    return {};
  }
  bool good = parser_.feed({first, static_cast<std::size_t>(got)});
  offset_ += got;
  std::vector<char> chunk(good && got == sizeof first ? kChunk : 0);
  while (good && !chunk.empty() &&
         (got = ::pread(file_.get(), chunk.data(), chunk.size(), offset_)) > 0) {
    good = parser_.feed({chunk.data(), static_cast<std::size_t>(got)});
    offset_ += got;
  }
  offset_ -= static_cast<off_t>(parser_.takeBackPartial());
  return good ? std::string() : complain("its file is no list of names");
}

}  // namespace zerva
