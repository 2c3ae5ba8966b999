#include "runtime/libClientUtils/bus/BusDirectory.h"

#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cerrno>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include "runtime/libClientUtils/bus/BusId.h"

namespace zerva {

namespace {

constexpr mode_t kOwnerOnly = 0700;
constexpr mode_t kOthers = 077;
constexpr mode_t kPermissions = 0777;
constexpr mode_t kFileMode = 0600;

// What a socket's address holds besides the directory's path: the rest of the path and a NUL.
constexpr std::size_t kLongestSocketName = sizeof("/1234567-0123456789abcdef.sock");

constexpr std::string_view kSuffix = ".names";

std::string errorText(int error) { return std::generic_category().message(error); }

/** A slash at the end would make the system follow a symbolic link. */
std::string plainPath(const std::string& path) {
  if (path.empty()) {
    throw std::runtime_error("bus directory: there is no path");
  }
  std::string plain = std::filesystem::absolute(path).lexically_normal();
  while (plain.size() > 1 && plain.back() == '/') {
    plain.pop_back();
  }
  return plain;
}

std::string octal(mode_t mode) {
  constexpr unsigned kBits = 3;
  constexpr unsigned kDigits = 4;
  std::string text;
  for (unsigned digit = kDigits; digit > 0; --digit) {
    text += static_cast<char>('0' + (mode >> (digit - 1) * kBits & 7U));
  }
  return text;
}

}  // namespace

BusDirectory::BusDirectory(const std::string& path) : path_(plainPath(path)) {
  constexpr std::size_t kLongest = sizeof(sockaddr_un::sun_path) - kLongestSocketName;
  if (path_.size() > kLongest) {
    throw std::runtime_error(describe("its path has " + std::to_string(path_.size()) +
                                      " bytes; the address of a socket leaves room for " +
                                      std::to_string(kLongest)));
  }
  if (::mkdir(path_.c_str(), kOwnerOnly) != 0 && errno != EEXIST) {
    throw std::runtime_error(describe("it cannot be made: " + errorText(errno)));
  }
  directory_ =
      FileDescriptor(::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  check();
}

void BusDirectory::check() const {
  const int error = errno;
  struct stat status {};
  if (::lstat(path_.c_str(), &status) == 0 && S_ISLNK(status.st_mode)) {
    throw std::runtime_error(describe("it is a symbolic link; a directory is wanted"));
  }
  if (!directory_) {
    throw std::runtime_error(describe("it cannot be opened: " + errorText(error)));
  }
  if (::fstat(directory_.get(), &status) != 0) {
    throw std::runtime_error(describe("it cannot be looked at: " + errorText(errno)));
  }
  if (status.st_uid != ::geteuid()) {
    throw std::runtime_error(describe("it belongs to user " + std::to_string(status.st_uid) +
                                      ", not to user " + std::to_string(::geteuid())));
  }
  if ((status.st_mode & kOthers) != 0) {
    throw std::runtime_error(describe("it is open to others, its mode is " +
                                      octal(status.st_mode & kPermissions) + "; 0700 is wanted"));
  }
}

FileDescriptor BusDirectory::open(const std::string& name, int flags) const {
  // Nobody knows what lies there: a pipe must not make the caller wait.
  return FileDescriptor(::openat(directory_.get(), name.c_str(),
                                 flags | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, kFileMode));
}

bool BusDirectory::rename(const std::string& from, const std::string& to) const {
  return ::renameat(directory_.get(), from.c_str(), directory_.get(), to.c_str()) == 0;
}

void BusDirectory::remove(const std::string& name) const {
  ::unlinkat(directory_.get(), name.c_str(), 0);
}

std::optional<std::vector<std::string>> BusDirectory::list() const {
  // Opened anew, since a position is kept with each.
  FileDescriptor again = open(".", O_RDONLY | O_DIRECTORY);
  if (!again) {
    return std::nullopt;
  }
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(::fdopendir(again.get()), &::closedir);
  if (entries == nullptr) {
    return std::nullopt;
  }
  again.release();
  std::vector<std::string> names;
  while (const dirent* entry = ::readdir(entries.get())) {
    names.emplace_back(entry->d_name);
  }
  return names;
}

std::optional<std::vector<std::string>> BusDirectory::processes() const {
  const auto files = list();
  if (!files) {
    return std::nullopt;
  }
  std::vector<std::string> ids;
  for (const std::string& file : *files) {
    if (file.size() > kSuffix.size() && file.ends_with(kSuffix)) {
      std::string id = file.substr(0, file.size() - kSuffix.size());
      if (isBusId(id)) {
        ids.push_back(std::move(id));
      }
    }
  }
  return ids;
}

std::string BusDirectory::describe(const std::string& cause) const {
  return "bus directory '" + path_ + "': " + cause;
}

}  // namespace zerva
