#include "runtime/libClientUtils/LibraryDirectories.h"

#include <unistd.h>

#include <mutex>

namespace zerva {
namespace {

struct Directories {
  std::mutex mutex;
  // Guarded by mutex.
  std::vector<std::string> searched;
};

/** Never destroyed, since libraries may be opened while the process ends. */
Directories& setting() {
  static auto* const instance = new Directories;
  return *instance;
}

}  // namespace

void LibraryDirectories::set(const std::vector<std::string>& directories) {
  const std::lock_guard lock(setting().mutex);
  setting().searched = directories;
}

std::vector<std::string> LibraryDirectories::get() {
  const std::lock_guard lock(setting().mutex);
  return setting().searched;
}

std::string LibraryDirectories::resolve(const std::string& name) {
  if (name.empty() || name.find('/') != std::string::npos) return name;
  for (std::string& path : get()) {
    if (path.empty()) path += '.';
    path += '/';
    path += name;
    if (::access(path.c_str(), F_OK) == 0) return path;
  }
  return name;
}

}  // namespace zerva
