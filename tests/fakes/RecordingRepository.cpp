#include "tests/fakes/RecordingRepository.h"

#include <vector>

#include "tests/fakes/Objects.h"
#include "tests/fakes/Text.h"
#include "tests/fakes/Trace.h"

namespace zerva::fakes {
namespace {

void asked(const std::string& operation, const std::vector<std::string>& arguments) {
  Trace::record("repository." + operation + "(" + joined(arguments) + ")");
}

std::string nameOf(const void* object) { return Objects::name(object); }

}  // namespace

RecordingRepository::RecordingRepository(AbstractServiceRepository& inner) : inner_(inner) {}

void RecordingRepository::addService(Service* service, Dll* dll, std::string interfaces) {
  asked("addService", {nameOf(service), nameOf(dll), inQuotes(interfaces)});
  const Nested nested;
  inner_.addService(service, dll, interfaces);
}

void RecordingRepository::addService(Service* service, ServiceExecutor* executor,
                                     CommsChannelIfc* channel, Dll* dll, std::string interfaces) {
  asked("addService",
        {nameOf(service), nameOf(executor), nameOf(channel), nameOf(dll), inQuotes(interfaces)});
  const Nested nested;
  inner_.addService(service, executor, channel, dll, interfaces);
}

void RecordingRepository::addServiceProxy(Proxy* proxy, Dll* dll, CommsChannelIfc* channel,
                                          ProxyRequest* request, std::string& interfaceName) {
  asked("addServiceProxy",
        {nameOf(proxy), nameOf(dll), nameOf(channel), nameOf(request), inQuotes(interfaceName)});
  const Nested nested;
  inner_.addServiceProxy(proxy, dll, channel, request, interfaceName);
}

void RecordingRepository::addServiceInvoker(Invoker* invoker, Dll* dll, std::string& interfaceName,
                                            std::string& protocol) {
  asked("addServiceInvoker",
        {nameOf(invoker), nameOf(dll), inQuotes(interfaceName), inQuotes(protocol)});
  const Nested nested;
  inner_.addServiceInvoker(invoker, dll, interfaceName, protocol);
}

Service* RecordingRepository::findService(std::string& interfaceName,
                                          const std::string& channelName) {
  asked("findService", {inQuotes(interfaceName), inQuotes(channelName)});
  const Nested nested;
  return inner_.findService(interfaceName, channelName);
}

Proxy* RecordingRepository::findServiceProxy(std::string& interfaceName) {
  asked("findServiceProxy", {inQuotes(interfaceName)});
  const Nested nested;
  return inner_.findServiceProxy(interfaceName);
}

Proxy* RecordingRepository::findServiceProxy(std::string& interfaceName, std::string& svcChannel,
                                             std::string& qualifier) {
  asked("findServiceProxy", {inQuotes(interfaceName), inQuotes(svcChannel), inQuotes(qualifier)});
  const Nested nested;
  return inner_.findServiceProxy(interfaceName, svcChannel, qualifier);
}

Invoker* RecordingRepository::findServiceInvoker(std::string& interfaceName,
                                                 std::string& protocol) {
  asked("findServiceInvoker", {inQuotes(interfaceName), inQuotes(protocol)});
  const Nested nested;
  return inner_.findServiceInvoker(interfaceName, protocol);
}

std::string RecordingRepository::findSvcChannel(Service* service) {
  asked("findSvcChannel", {nameOf(service)});
  const Nested nested;
  return inner_.findSvcChannel(service);
}

bool RecordingRepository::containsService(Service* service) {
  asked("containsService", {nameOf(service)});
  const Nested nested;
  return inner_.containsService(service);
}

SvcData* RecordingRepository::getServiceData(Service* service) {
  asked("getServiceData", {nameOf(service)});
  const Nested nested;
  return inner_.getServiceData(service);
}

void RecordingRepository::shutdownAllServices() {
  asked("shutdownAllServices", {});
  const Nested nested;
  inner_.shutdownAllServices();
}

void RecordingRepository::deleteAllServices() {
  asked("deleteAllServices", {});
  const Nested nested;
  inner_.deleteAllServices();
}

void RecordingRepository::deleteAllServiceInvokers() {
  asked("deleteAllServiceInvokers", {});
  const Nested nested;
  inner_.deleteAllServiceInvokers();
}

void RecordingRepository::deleteAllServiceProxies() {
  asked("deleteAllServiceProxies", {});
  const Nested nested;
  inner_.deleteAllServiceProxies();
}

void RecordingRepository::deleteOneServiceProxy(Proxy* proxy, std::string& interfaceName) {
  asked("deleteOneServiceProxy", {nameOf(proxy), inQuotes(interfaceName)});
  const Nested nested;
  inner_.deleteOneServiceProxy(proxy, interfaceName);
}

}  // namespace zerva::fakes
