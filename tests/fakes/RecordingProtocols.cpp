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

void NamedAdapter::writeCall(const std::string& method, const Writable&, std::string&) {
  called(this, "writeCall", {inQuotes(method)});
}

std::string NamedAdapter::methodOf(const std::string& call) {
  called(this, "methodOf", {inQuotes(call)});
  return {};
}

void NamedAdapter::readCall(const std::string& call, Readable&) {
  called(this, "readCall", {inQuotes(call)});
}

void NamedAdapter::writeReply(const Writable&, std::string&) { called(this, "writeReply", {}); }

void NamedAdapter::readReply(const std::string& reply, Readable&) {
  called(this, "readReply", {inQuotes(reply)});
}

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
