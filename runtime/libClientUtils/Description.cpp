#include "runtime/libClientUtils/Description.h"

#include <dlfcn.h>
#include <link.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <typeinfo>

#include "framework/Executable.h"
#include "framework/Threadable.h"
#include "runtime/libClientUtils/TypeName.h"

namespace zerva {
namespace {

/**
 * Copies the name of the file of the library in which `address` lies; none for the program itself.
 *
 * The loader has written what this reads under a lock of its own, which the thread sanitizer does
 * not see; so nothing of this is looked at by it. It takes the address and not what the loader
 * knows of it, so that the compiler cannot do the first read where this is called.
 *
 * @param room how many characters fit in `name`, with the end.
 * @return whether the address lies in the program or in an open library.
 */
__attribute__((no_sanitize("thread"))) bool copyFileName(void* address, char* name,
                                                         std::size_t room) {
  dl_find_object found{};
  // Unlike the other ways to ask, this one takes no lock of the loader, which a thread that opens
  // or closes a library may hold for long.
  if (::_dl_find_object(address, &found) != 0) return false;
  std::size_t size = 0;
  for (const char* at = found.dlfo_link_map->l_name; *at != '\0'; ++at) {
    if (*at == '/') {
      size = 0;
    } else if (size + 1 < room) {
      name[size++] = *at;
    }
  }
  name[size] = '\0';
  return true;
}

/** @param object a polymorphic object; its table of virtual functions lies in its library. */
std::string libraryOf(const void* object) {
  void* const table = *static_cast<void* const*>(object);
  std::array<char, NAME_MAX + 1> name{};
  if (!copyFileName(table, name.data(), name.size())) return "";
  return name[0] == '\0' ? program_invocation_short_name : name.data();
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
