// A service that behaves: it does nothing, and does it for as many channels as are wanted.

#include "framework/Service.h"

class PlainService : public Service {
 public:
  void init(SvcRTEContext* /*context*/) override {}
};

extern "C" ZERVA_EXPORT Service* createPlain() { return new PlainService; }
