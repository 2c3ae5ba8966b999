#include "tests/fakes/RecordingProtocols.h"

#include "tests/fakes/Objects.h"
#include "tests/fakes/Recording.h"
#include "tests/fakes/Text.h"

namespace zerva::fakes {

NamedAdapter::NamedAdapter(std::string name) : protocol(std::move(name)) {
  constructed(this, "Adapter", {inQuotes(protocol)});
}

NamedAdapter::~NamedAdapter() { Objects::died(this); }

const std::string& NamedAdapter::getProtocol() const { return protocol; }

RecordingProtocols::RecordingProtocols() { constructed(this, "Protocols", {}); }

RecordingProtocols::~RecordingProtocols() { Objects::died(this); }

void RecordingProtocols::add(const std::string& protocol, ProtocolAdapter* adapter) {
  adapters[protocol] = adapter;
}

ProtocolAdapter* RecordingProtocols::findProtocolAdapter(std::string protocol) {
  called(this, "findProtocolAdapter", {inQuotes(protocol)});
  const auto found = adapters.find(protocol);
  return found == adapters.end() ? nullptr : found->second;
}

}  // namespace zerva::fakes
