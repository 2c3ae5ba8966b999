#include "runtime/libClientUtils/OpenLibraries.h"

#include <list>
#include <mutex>
#include <utility>

namespace zerva {
namespace {

struct Library {
  const Dll* object;
  std::string name;
};

struct Libraries {
  std::mutex mutex;
  // Guarded by mutex.
  std::list<Library> open;
};

/** Never destroyed: what is left undeleted on purpose hangs on it. */
Libraries& libraries() {
  static auto* const instance = new Libraries;
  return *instance;
}

}  // namespace

std::size_t OpenLibraries::objects() {
  const std::lock_guard lock(libraries().mutex);
  return libraries().open.size();
}

std::vector<std::string> OpenLibraries::names() {
  const std::lock_guard lock(libraries().mutex);
  std::vector<std::string> names;
  for (const Library& library : libraries().open) names.push_back(library.name);
  return names;
}

void OpenLibraries::add(const Dll* library, std::string name) {
  const std::lock_guard lock(libraries().mutex);
  libraries().open.push_back({library, std::move(name)});
}

void OpenLibraries::remove(const Dll* library) {
  const std::lock_guard lock(libraries().mutex);
  libraries().open.remove_if([library](const Library& one) { return one.object == library; });
}

}  // namespace zerva
