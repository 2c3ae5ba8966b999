#include "runtime/libClientUtils/TypeName.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>

namespace zerva {

std::string typeName(const std::type_info& type) {
  int status = 0;
  const std::unique_ptr<char, void (*)(void*)> name(
      abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), std::free);
  return name == nullptr ? type.name() : name.get();
}

}  // namespace zerva
