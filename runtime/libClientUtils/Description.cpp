#include "runtime/libClientUtils/Description.h"

#include <dlfcn.h>
#include <link.h>

#include <cerrno>
#include <cstring>
#include <typeinfo>

#include "framework/Executable.h"
#include "framework/Threadable.h"
#include "runtime/libClientUtils/TypeName.h"

namespace zerva {
namespace {

/** @param object a polymorphic object; its table of virtual functions lies in its library. */
std::string libraryOf(const void* object) {
  void* const table = *static_cast<void* const*>(object);
  dl_find_object found{};
  // Unlike the other ways to ask, this one takes no lock of the loader, which a thread that opens
  // or closes a library may hold for long.
  if (::_dl_find_object(table, &found) != 0) return "";
  const char* const path = found.dlfo_link_map->l_name;
  if (*path == '\0') return program_invocation_short_name;
  const char* const slash = std::strrchr(path, '/');
  return slash == nullptr ? path : slash + 1;
}

template <typename Object>
std::string typeOf(const Object* object) {
  return object == nullptr ? "" : typeid(*object).name();
}

}  // namespace

Description::Description(const Executable* object)
    : type_(typeOf(object)), library_(object == nullptr ? "" : libraryOf(object)) {}

Description::Description(const Threadable* object)
    : type_(typeOf(object)), library_(object == nullptr ? "" : libraryOf(object)) {}

std::string Description::text() const {
  if (type_.empty()) return "nothing";
  const std::string type = typeName(type_.c_str());
  return library_.empty() ? type : type + " of " + library_;
}

std::string describe(const Executable* executable) { return Description(executable).text(); }

std::string describe(const Threadable* body) { return Description(body).text(); }

}  // namespace zerva
