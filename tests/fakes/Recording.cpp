#include "tests/fakes/Recording.h"

#include "tests/fakes/Objects.h"
#include "tests/fakes/Text.h"
#include "tests/fakes/Trace.h"

namespace zerva::fakes {

std::string constructed(const void* object, const std::string& kind,
                        const std::vector<std::string>& arguments) {
  const std::string name = Objects::born(object, kind);
  try {
    Trace::record(name + " = " + kind + "(" + joined(arguments) + ")");
  } catch (...) {
    Objects::unborn(object);
    throw;
  }
  return name;
}

void called(const void* object, const std::string& operation,
            const std::vector<std::string>& arguments, const std::string& result) {
  Trace::record(Objects::name(object) + "." + operation + "(" + joined(arguments) + ")" +
                (result.empty() ? "" : " -> " + result));
}

}  // namespace zerva::fakes
