#include "runtime/libClientUtils/ProtocolRepository.h"

#include <atomic>
#include <list>
#include <mutex>
#include <string>
#include <utility>

#include "framework/ProtocolAdapter.h"
#include "runtime/libClientUtils/Lookups.h"
#include "runtime/libClientUtils/protocols/SimpleRmiAdapter.h"
#include "runtime/libClientUtils/protocols/SvcXmlAdapter.h"

struct ProtocolRepository::State {
  zerva::SimpleRmiAdapter simpleRmi;
  zerva::SvcXmlAdapter svcXml;

  /** Stays where it is: whoever looks for one takes no lock. */
  struct Known {
    Known(std::string itsProtocol, ProtocolAdapter* itsAdapter, const Known* theNext)
        : protocol(std::move(itsProtocol)), adapter(itsAdapter), next(theNext) {}

    const std::string protocol;
    std::atomic<ProtocolAdapter*> adapter;
    const Known* const next;
  };
  std::atomic<const Known*> newest{nullptr};

  std::mutex mutex;
  std::list<Known> all;  // guarded by mutex
};

ProtocolRepository::ProtocolRepository() : state_(std::make_unique<State>()) {
  addProtocolAdapter(&state_->simpleRmi);
  addProtocolAdapter(&state_->svcXml);
}

ProtocolRepository::~ProtocolRepository() = default;

void ProtocolRepository::addProtocolAdapter(ProtocolAdapter* adapter) {
  if (adapter == nullptr) return;
  const std::string protocol = adapter->getProtocol();
  const std::lock_guard lock(state_->mutex);
  for (State::Known& known : state_->all) {
    if (known.protocol == protocol) {
      known.adapter.store(adapter, std::memory_order_release);
      zerva::Lookups::somethingEnded();
      return;
    }
  }
  state_->newest.store(&state_->all.emplace_back(protocol, adapter, state_->newest.load()),
                       std::memory_order_release);
}

ProtocolAdapter* ProtocolRepository::findProtocolAdapter(std::string protocol) {
  for (const State::Known* known = state_->newest.load(std::memory_order_acquire); known != nullptr;
       known = known->next) {
    if (known->protocol == protocol) return known->adapter.load(std::memory_order_acquire);
  }
  return nullptr;
}
