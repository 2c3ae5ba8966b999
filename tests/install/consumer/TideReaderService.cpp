// Reads the tide once and ends its process, in order.

#include <signal.h>
#include <unistd.h>

#include <exception>

#include "SvcRTEContext.h"
#include "Tide.h"
#include "framework/Logging.h"
#include "framework/Service.h"

class TideReaderService : public Service {
 public:
  void init(SvcRTEContext* context) override {
    context_ = context;
    context->startTimer(context->createTimer(this, 50));  // milliseconds
  }

  void timerExpired(int /*timer*/) override {
    auto* const tide = dynamic_cast<Tide*>(context_->findService("TideIfc"));
    if (tide == nullptr || read_) return;
    read_ = true;
    try {
      logAppUni("Consumer", "TideReaderService", 3, __LINE__, "tide: %.2f m at %s, %d bit",
                tide->height(), tide->station().c_str(), static_cast<int>(sizeof(void*) * 8));
    } catch (const std::exception& exception) {
      logAppUni("Consumer", "TideReaderService", 1, __LINE__, "tide: %s", exception.what());
    }
    kill(getpid(), SIGTERM);
  }

 private:
  SvcRTEContext* context_ = nullptr;
  bool read_ = false;
};

extern "C" ZERVA_EXPORT Service* createTideReader() { return new TideReaderService; }
