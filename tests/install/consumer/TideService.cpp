#include "Tide.h"
#include "framework/Service.h"

class TideService : public Service, public Tide {
 public:
  void init(SvcRTEContext* /*context*/) override {}

  double height() override { return 1.25; }
  std::string station() const override { return "pier 3"; }
};

extern "C" ZERVA_EXPORT Service* createTide() { return new TideService; }
