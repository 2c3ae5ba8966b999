#include "runtime/libClientUtils/OpenLibraries.h"

#include <list>
#include <mutex>
#include <new>
#include <unordered_map>
#include <utility>

namespace zerva {
namespace {

/** Where the library of a name is. */
struct Place {
  std::string path;
  /** How many objects have opened it there. */
  std::size_t objects = 0;
};

struct Open {
  std::list<std::string>::iterator name;
  /** Null unless the name stands for the place as long as the object lives. */
  Place* place = nullptr;
};

struct Libraries {
  std::mutex mutex;
  // Guarded by mutex.
  std::list<std::string> names;
  std::unordered_map<const Dll*, Open> open;
  std::unordered_map<std::string, Place> places;
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

std::string OpenLibraries::placeOf(const std::string& name) {
  const std::lock_guard lock(libraries().mutex);
  const auto place = libraries().places.find(name);
  return place == libraries().places.end() ? std::string() : place->second.path;
}

void OpenLibraries::add(const Dll* library, std::string name) {
  std::list<std::string> mine;
  mine.push_back(std::move(name));
  const std::lock_guard lock(libraries().mutex);
  libraries().open[library].name = mine.begin();
  libraries().names.splice(libraries().names.end(), mine);
}

void OpenLibraries::remove(const Dll* library) {
  const std::lock_guard lock(libraries().mutex);
  const auto found = libraries().open.find(library);
  if (found == libraries().open.end()) return;
  const auto [name, place] = found->second;
  if (place != nullptr && --place->objects == 0) libraries().places.erase(*name);
  libraries().names.erase(name);
  libraries().open.erase(found);
}

void OpenLibraries::opened(const Dll* library, const std::string& path) noexcept try {
  const std::lock_guard lock(libraries().mutex);
  const auto found = libraries().open.find(library);
  if (found == libraries().open.end()) return;
  Place& place = libraries().places.try_emplace(*found->second.name, Place{path}).first->second;
  // Another thread may have found one elsewhere at the same time.
  if (place.path != path) return;
  ++place.objects;
  found->second.place = &place;
} catch (const std::bad_alloc&) {
  // It is looked for again.
}

}  // namespace zerva
