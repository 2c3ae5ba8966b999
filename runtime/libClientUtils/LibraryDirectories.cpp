#include "runtime/libClientUtils/LibraryDirectories.h"

#include <unistd.h>

#include <memory>
#include <mutex>
#include <string_view>

namespace zerva {
namespace {

using Names = std::vector<std::string>;

struct Directories {
  /** @returns what is set now. It stays as it is: whoever sets others sets another list. */
  std::shared_ptr<const Names> get() {
    const std::lock_guard lock(mutex);
    return searched;
  }

  std::mutex mutex;
  // Guarded by mutex.
  std::shared_ptr<const Names> searched = std::make_shared<const Names>();
};

/** Never destroyed, since libraries may be opened while the process ends. */
Directories& setting() {
  static auto* const instance = new Directories;
  return *instance;
}

}  // namespace

void LibraryDirectories::set(const std::vector<std::string>& directories) {
  auto searched = std::make_shared<const Names>(directories);
  const std::lock_guard lock(setting().mutex);
  setting().searched.swap(searched);
}

std::vector<std::string> LibraryDirectories::get() { return *setting().get(); }

std::string LibraryDirectories::resolve(const std::string& name) {
  if (name.empty() || name.find('/') != std::string::npos) return name;
  std::string path;
  const std::shared_ptr<const Names> searched = setting().get();
  for (const std::string& directory : *searched) {
    const std::string_view place = directory.empty() ? std::string_view(".") : directory;
    path.clear();
    path.reserve(place.size() + 1 + name.size());
    path.append(place).append(1, '/').append(name);
    if (::access(path.c_str(), F_OK) == 0) return path;
  }
  return name;
}

}  // namespace zerva
