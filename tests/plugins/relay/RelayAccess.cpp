// Proxy and invoker of a relay, and how many invokers were made.

#include <atomic>
#include <chrono>
#include <thread>

#include "rmi/InvokerOf.h"
#include "tests/plugins/relay/RelayProxy.h"

namespace {

std::atomic<int> invokers{0};

class RelayInvoker : public zerva::rmi::InvokerOf<Relay> {
 public:
  RelayInvoker() : InvokerOf(ZERVA_METHOD(Relay::pass)) {}
};

}  // namespace

extern "C" ZERVA_EXPORT Proxy* createRelayProxy() { return new RelayProxy; }

extern "C" ZERVA_EXPORT Invoker* createRelayInvoker() {
  ++invokers;
  // So that others come meanwhile who want one too.
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  return new RelayInvoker;
}

extern "C" ZERVA_EXPORT int relayInvokersMade() { return invokers; }
