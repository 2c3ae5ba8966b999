// Creators that throw what creators throw in practice. The library must stay where it is as long as
// the exception lives: its type, or its text, is in here.

#include <stdexcept>

#include "framework/Service.h"

namespace {

/** Nobody outside knows this type. */
class OwnException : public std::exception {
 public:
  const char* what() const noexcept override { return "an exception of the library's own type"; }
};

/** Not even a standard exception. */
struct OwnStruct {
  int number = 42;
};

}  // namespace

extern "C" ZERVA_EXPORT Service* createThrowingException() {
  throw std::runtime_error("the creator does not want to");
}

extern "C" ZERVA_EXPORT Service* createThrowingText() { throw "a bare text"; }

extern "C" ZERVA_EXPORT Service* createThrowingOwnException() { throw OwnException(); }

extern "C" ZERVA_EXPORT Service* createThrowingOwnStruct() { throw OwnStruct(); }
