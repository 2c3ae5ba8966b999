#include "runtime/libClientUtils/TypeName.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>

namespace zerva {

std::string typeName(const char* name) {
  int status = 0;
  const std::unique_ptr<char, void (*)(void*)> readable(
      abi::__cxa_demangle(name, nullptr, nullptr, &status), std::free);
  return readable == nullptr ? name : readable.get();
}

}  // namespace zerva
