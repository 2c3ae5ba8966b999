// Services that behave: each finds the next of a ring of three while it is made, and has it when it
// is called.

#include <stdexcept>

#include "SvcRTEContext.h"
#include "framework/Service.h"
#include "tests/plugins/relay/Relay.h"

namespace {

class RingService : public Service, public Relay {
 public:
  explicit RingService(const char* next) : next_(next) {}

  void init(SvcRTEContext* context) override {
    found_ = dynamic_cast<Relay*>(context->findService(next_));
  }

  std::vector<int> pass(const std::vector<std::string>& way) override {
    if (found_ == nullptr) throw std::runtime_error("there is no next one");
    if (way.empty()) return {0};
    auto passed = found_->pass({way.begin() + 1, way.end()});
    passed.push_back(static_cast<int>(passed.size()));
    return passed;
  }

 private:
  const char* const next_;
  Relay* found_ = nullptr;  // the proxy; the configurator's
};

}  // namespace

extern "C" ZERVA_EXPORT Service* createRing1() { return new RingService("Ring2"); }
extern "C" ZERVA_EXPORT Service* createRing2() { return new RingService("Ring3"); }
extern "C" ZERVA_EXPORT Service* createRing3() { return new RingService("Ring1"); }
