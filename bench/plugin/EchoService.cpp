// The service of the benchmarks. Many copies of its library are made, each a library of its own to
// the loader.

#include "bench/plugin/Arrivals.h"
#include "bench/plugin/Echo.h"
#include "framework/CommsChannelDataContainerMessage.h"
#include "framework/Service.h"

class EchoService : public Service, public Echo {
 public:
  void init(SvcRTEContext* /*context*/) override {}

  std::string echo(const std::string& data) override { return data; }
  std::uint32_t sizeOf(const std::string& data) override {
    return static_cast<std::uint32_t>(data.size());
  }

  /** Answers one that wants an answer, and counts one that does not. */
  void messageReceived(const CommsChannelDataContainerMessage& message,
                       CommsChannelDataContainerMessage& reply) override {
    if (message.getRequestId() != 0) {
      reply.setData(message.getData());
    } else {
      zerva::bench::Arrivals::one();
    }
  }

  /** As a legacy service: a thread that has nothing to do until the end. */
  void run() override { zerva::bench::Arrivals::stayUntilReleased(); }
};

extern "C" ZERVA_EXPORT Service* createEcho() { return new EchoService; }
