// A service that is made and recorded, and then cannot be initialised.

#include <exception>

#include "framework/Service.h"

namespace {

/** Nobody outside knows this type. */
class InitFailed : public std::exception {
 public:
  const char* what() const noexcept override { return "init does not work here"; }
};

}  // namespace

class ThrowingInitService : public Service {
 public:
  void init(SvcRTEContext* /*context*/) override { throw InitFailed(); }
};

extern "C" ZERVA_EXPORT Service* createThrowingInit() { return new ThrowingInitService; }
