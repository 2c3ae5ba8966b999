#include "tests/fakes/RecordingProxy.h"

#include "SvcRTEContext.h"
#include "tests/fakes/Objects.h"
#include "tests/fakes/Recording.h"
#include "tests/fakes/Text.h"
#include "tests/fakes/Trace.h"

namespace zerva::fakes {

RecordingProxy::RecordingProxy(const std::string& kind) {
  const Nested nested;
  constructed(this, kind, {});
  Objects::alias(static_cast<Executable*>(this), this);
}

RecordingProxy::~RecordingProxy() { Objects::died(this); }

void RecordingProxy::init(SvcRTEContext* context) {
  called(this, "init", {Objects::name(context)});
}

void RecordingProxy::stop() { called(this, "stop", {}); }

void RecordingProxy::initialise(ProxyRequest* request) {
  called(this, "initialise", {Objects::name(request)});
}

RecordingRegistryProxy::RecordingRegistryProxy() : RecordingProxy("RegistryProxy") {
  Objects::alias(static_cast<ServiceRegistryIfc*>(this), this);
}

void RecordingRegistryProxy::registerInterface(const std::string& ifc, const std::string& channel) {
  called(this, "registerInterface", {inQuotes(ifc), inQuotes(channel)});
}

void RecordingRegistryProxy::unregisterInterface(const std::string& ifc,
                                                 const std::string& channel) {
  called(this, "unregisterInterface", {inQuotes(ifc), inQuotes(channel)});
}

void RecordingRegistryProxy::registerProxy(const std::string& lib, const std::string& creator,
                                           const std::string& ifc, const std::string& prot) {
  called(this, "registerProxy", {inQuotes(lib), inQuotes(creator), inQuotes(ifc), inQuotes(prot)});
}

void RecordingRegistryProxy::registerInvoker(const std::string& lib, const std::string& creator,
                                             const std::string& ifc, const std::string& prot) {
  called(this, "registerInvoker",
         {inQuotes(lib), inQuotes(creator), inQuotes(ifc), inQuotes(prot)});
}

}  // namespace zerva::fakes
