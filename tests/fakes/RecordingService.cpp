#include "tests/fakes/RecordingService.h"

#include "SvcRTEContext.h"
#include "framework/CommsChannelDataContainerMessage.h"
#include "tests/fakes/Objects.h"
#include "tests/fakes/Recording.h"
#include "tests/fakes/Text.h"
#include "tests/fakes/Trace.h"

namespace zerva::fakes {

RecordingService::RecordingService(const std::string& kind) {
  const Nested nested;
  constructed(this, kind, {});
  Objects::alias(static_cast<Executable*>(this), this);
  Objects::alias(static_cast<Threadable*>(this), this);
}

RecordingService::~RecordingService() { Objects::died(this); }

void RecordingService::init(SvcRTEContext* context) {
  called(this, "init", {Objects::name(context)});
}

void RecordingService::stop() { called(this, "stop", {}); }

void RecordingService::timerExpired(int timer) {
  called(this, "timerExpired", {std::to_string(timer)});
}

void RecordingService::messageReceived(const CommsChannelDataContainerMessage& message,
                                       CommsChannelDataContainerMessage& reply) {
  called(this, "messageReceived", {Objects::name(&message)});
  const Nested nested;
  reply.setData("reply to " + message.getData());
}

void RecordingService::run() { called(this, "run", {}); }

RecordingRegistryService::RecordingRegistryService() : RecordingService("RegistryService") {
  Objects::alias(static_cast<ServiceRegistryIfc*>(this), this);
}

void RecordingRegistryService::registerInterface(const std::string& ifc,
                                                 const std::string& channel) {
  called(this, "registerInterface", {inQuotes(ifc), inQuotes(channel)});
}

void RecordingRegistryService::unregisterInterface(const std::string& ifc,
                                                   const std::string& channel) {
  called(this, "unregisterInterface", {inQuotes(ifc), inQuotes(channel)});
}

void RecordingRegistryService::registerProxy(const std::string& lib, const std::string& creator,
                                             const std::string& ifc, const std::string& prot) {
  called(this, "registerProxy", {inQuotes(lib), inQuotes(creator), inQuotes(ifc), inQuotes(prot)});
}

void RecordingRegistryService::registerInvoker(const std::string& lib, const std::string& creator,
                                               const std::string& ifc, const std::string& prot) {
  called(this, "registerInvoker",
         {inQuotes(lib), inQuotes(creator), inQuotes(ifc), inQuotes(prot)});
}

}  // namespace zerva::fakes
