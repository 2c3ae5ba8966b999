#include "runtime/libClientUtils/OpenLibraries.h"

#include <mutex>
#include <new>
#include <unordered_map>

namespace zerva {
namespace {

/** Where the library of a name is. */
struct Place {
  std::string path;
  /** How many objects have opened it there. */
  std::size_t objects = 0;
};

using Places = std::unordered_map<std::string, Place>;

struct Libraries {
  std::mutex mutex;
  // Guarded by mutex.
  Places places;
  /** With the place that a name stands for as long as the object lives; null for none. */
  std::unordered_map<const Dll*, Places::value_type*> open;
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

std::string OpenLibraries::placeOf(const std::string& name) {
  const std::lock_guard lock(libraries().mutex);
  const auto place = libraries().places.find(name);
  return place == libraries().places.end() ? std::string() : place->second.path;
}

void OpenLibraries::add(const Dll* library) {
  const std::lock_guard lock(libraries().mutex);
  libraries().open.insert_or_assign(library, nullptr);
}

void OpenLibraries::opened(const Dll* library, const std::string& name,
                           const std::string& path) noexcept try {
  const std::lock_guard lock(libraries().mutex);
  const auto found = libraries().open.find(library);
  if (found == libraries().open.end()) return;
  auto& named = *libraries().places.try_emplace(name, Place{path}).first;
  // Another thread may have found one elsewhere at the same time.
  if (named.second.path != path) return;
  ++named.second.objects;
  found->second = &named;
} catch (const std::bad_alloc&) {
  // It is looked for again.
}

void OpenLibraries::remove(const Dll* library) {
  const std::lock_guard lock(libraries().mutex);
  const auto found = libraries().open.find(library);
  if (found == libraries().open.end()) return;
  Places::value_type* const named = found->second;
  libraries().open.erase(found);
  if (named != nullptr && --named->second.objects == 0) libraries().places.erase(named->first);
}

}  // namespace zerva
