// A legacy service whose thread ends in an exception.

#include <stdexcept>

#include "framework/Service.h"

class ThrowingThreadService : public Service {
 public:
  void init(SvcRTEContext* /*context*/) override {}

  void run() override { throw std::runtime_error("the thread does not want to"); }
};

extern "C" ZERVA_EXPORT Service* createThrowingThread() { return new ThrowingThreadService; }
