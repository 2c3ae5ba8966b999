#include "runtime/libClientUtils/OpenLibraries.h"

#include <list>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace zerva {
namespace {

struct Libraries {
  std::mutex mutex;
  // Guarded by mutex.
  std::list<std::string> names;
  std::unordered_map<const Dll*, std::list<std::string>::iterator> open;
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
  return {libraries().names.begin(), libraries().names.end()};
}

void OpenLibraries::add(const Dll* library, std::string name) {
  std::list<std::string> mine;
  mine.push_back(std::move(name));
  const std::lock_guard lock(libraries().mutex);
  libraries().open[library] = mine.begin();
  libraries().names.splice(libraries().names.end(), mine);
}

void OpenLibraries::remove(const Dll* library) {
  const std::lock_guard lock(libraries().mutex);
  const auto found = libraries().open.find(library);
  if (found == libraries().open.end()) return;
  libraries().names.erase(found->second);
  libraries().open.erase(found);
}

}  // namespace zerva
