#include "runtime/libClientUtils/ProtocolRepository.h"

#include <map>
#include <mutex>

#include "framework/ProtocolAdapter.h"
#include "runtime/libClientUtils/protocols/SimpleRmiAdapter.h"
#include "runtime/libClientUtils/protocols/SvcXmlAdapter.h"

struct ProtocolRepository::State {
  zerva::SimpleRmiAdapter simpleRmi;
  zerva::SvcXmlAdapter svcXml;
  std::mutex mutex;
  // Guarded by mutex.
  std::map<std::string, ProtocolAdapter*> adapters;
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
  state_->adapters[protocol] = adapter;
}

ProtocolAdapter* ProtocolRepository::findProtocolAdapter(std::string protocol) {
  const std::lock_guard lock(state_->mutex);
  const auto found = state_->adapters.find(protocol);
  return found == state_->adapters.end() ? nullptr : found->second;
}
