#include "tests/conformance/TestConfigurator.h"

#include "framework/FwkTimer.h"
#include "framework/ServiceThreadPool.h"
#include "tests/fakes/Objects.h"
#include "tests/fakes/Text.h"
#include "tests/fakes/Trace.h"

namespace zerva::conformance {

using fakes::inQuotes;
using fakes::Nested;
using fakes::Objects;
using fakes::Trace;

void OpenConfigurator::nameSides(void* memory) {
  auto* future = static_cast<OpenConfigurator*>(memory);
  Objects::call(static_cast<SvcRTEContext*>(future), "SvcRTEContext");
  Objects::call(static_cast<FrameworkContext*>(future), "FrameworkContext");
}

void OpenConfigurator::nameParts() const {
  Objects::call(timer, "timer");
  Objects::call(threadPool, "pool");
  Objects::call(static_cast<ServiceThreadPoolIfc*>(threadPool), "pool");
}

Executable* TestConfigurator::findExecutable(std::string& name) {
  const auto scripted = executables.find(name);
  if (scripted == executables.end()) return OpenConfigurator::findExecutable(name);
  Trace::record("configurator.findExecutable(" + inQuotes(name) + ")");
  return scripted->second;
}

Executable* TestConfigurator::findService(const std::string& ifc) {
  Trace::record("configurator.findService(" + inQuotes(ifc) + ")");
  const auto scripted = services.find(ifc);
  if (scripted != services.end()) return scripted->second;
  const Nested nested;
  return OpenConfigurator::findService(ifc);
}

Proxy* TestConfigurator::findProxy(std::string& ifc, std::string& svcChannel,
                                   std::string& qualifier) {
  Trace::record("configurator.findProxy(" + inQuotes(ifc) + ", " + inQuotes(svcChannel) + ", " +
                inQuotes(qualifier) + ")");
  if (proxy) return *proxy;
  const Nested nested;
  return OpenConfigurator::findProxy(ifc, svcChannel, qualifier);
}

std::string TestConfigurator::findChannel(Executable* executable) {
  Trace::record("configurator.findChannel(" + Objects::name(executable) + ")");
  if (channelName) return *channelName;
  const Nested nested;
  return OpenConfigurator::findChannel(executable);
}

}  // namespace zerva::conformance
