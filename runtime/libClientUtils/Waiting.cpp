#include "runtime/libClientUtils/Waiting.h"

#include <dlfcn.h>
#include <link.h>

#include <cerrno>
#include <filesystem>
#include <list>
#include <mutex>
#include <typeinfo>
#include <utility>

#include "framework/Executable.h"
#include "framework/Threadable.h"
#include "runtime/libClientUtils/TypeName.h"

namespace zerva {
namespace {

struct Wait {
  const Waiting* who;
  std::string what;
};

struct Waits {
  std::mutex mutex;
  // Guarded by mutex.
  std::list<Wait> waits;
  std::string lastShutdown;
};

/** Never destroyed, since threads may still wait while the process ends. */
Waits& waits() {
  static auto* const instance = new Waits;
  return *instance;
}

/** @param object a polymorphic object; its table of virtual functions lies in its library. */
std::string libraryOf(const void* object) {
  void* const table = *static_cast<void* const*>(object);
  dl_find_object found{};
  // Unlike the other ways to ask, this one takes no lock of the loader, which a thread that opens
  // or closes a library may hold for long.
  if (::_dl_find_object(table, &found) != 0) return "";
  const std::string path = found.dlfo_link_map->l_name;
  return path.empty() ? program_invocation_short_name
                      : std::filesystem::path(path).filename().string();
}

template <typename Object>
std::string describeObject(const Object* object) {
  if (object == nullptr) return "nothing";
  const std::string library = libraryOf(object);
  const std::string type = typeName(typeid(*object));
  return library.empty() ? type : type + " of " + library;
}

}  // namespace

Waiting::Waiting(std::string what) {
  std::list<Wait> mine;
  mine.push_back({this, std::move(what)});
  const std::lock_guard lock(waits().mutex);
  waits().waits.splice(waits().waits.end(), mine);
}

Waiting::~Waiting() {
  const std::lock_guard lock(waits().mutex);
  waits().waits.remove_if([this](const Wait& wait) { return wait.who == this; });
}

std::vector<std::string> Waiting::all() {
  const std::lock_guard lock(waits().mutex);
  std::vector<std::string> all;
  for (const Wait& wait : waits().waits) all.push_back(wait.what);
  return all;
}

void Waiting::noteShutdown(std::string executor) {
  const std::lock_guard lock(waits().mutex);
  waits().lastShutdown = std::move(executor);
}

std::string Waiting::lastShutdown() {
  const std::lock_guard lock(waits().mutex);
  return waits().lastShutdown;
}

std::string describe(const Executable* executable) { return describeObject(executable); }

std::string describe(const Threadable* body) { return describeObject(body); }

}  // namespace zerva
