#include "host/tracing/TraceRecorder.h"

#include <cstdint>
#include <string_view>
#include <utility>

#include "framework/CommsChannelIfc.h"
#include "framework/ProxyRequest.h"
#include "framework/Service.h"
#include "host/tracing/WorkOfThreads.h"
#include "runtime/libClientUtils/Description.h"
#include "runtime/libClientUtils/trace/TraceEvent.h"
#include "runtime/libLoggingHandler/LogSettings.h"

namespace zerva {
namespace {

using Kind = ConfiguratorEvent::Kind;

constexpr const char* kConfiguratorModule = "Service Config";
constexpr const char* kExecutorModule = "Service Executor";
constexpr std::string_view kThrownByLazy = ": the service could not be made: ";
/** Of different lookups; who makes up new names all the time is not followed for ever. */
constexpr std::size_t kMostLookups = 10000;

/** When the `init` that runs on this thread began. */
thread_local std::int64_t initBegan = 0;

void plain(TraceKind kind) { TraceEvent(kind).write(); }

void lineBegins(const ConfiguratorEvent& event, const char* kind) {
  TraceEvent(TraceKind::ServiceDeclared)
      .with(TraceKey::Library, event.library)
      .with(TraceKey::Creator, event.creator)
      .with(TraceKey::Channel, event.channel)
      .with(TraceKey::Interfaces, event.interfaces)
      .with(TraceKey::Kind, kind)
      .write();
}

void recordDeclared(const ConfiguratorEvent& event) {
  TraceEvent(TraceKind::RecordDeclared)
      .with(TraceKey::Kind, event.role)
      .with(TraceKey::Library, event.library)
      .with(TraceKey::Creator, event.creator)
      .with(TraceKey::Interface, event.interfaces)
      .with(TraceKey::Protocol, event.protocol)
      .write();
}

void initBegins() {
  initBegan = Trace::now();
  plain(TraceKind::InitBegins);
}

void initEnded(const ConfiguratorEvent& event) {
  TraceEvent(TraceKind::InitEnded)
      .since(initBegan)
      .with(TraceKey::Interfaces, event.interfaces)
      .write();
}

void failed(const char* what, std::string_view error) {
  TraceEvent(TraceKind::Failed).with(TraceKey::What, what).with(TraceKey::Error, error).write();
}

}  // namespace

TraceRecorder::TraceRecorder() {
  LogSettings::addSink(*this, kConfiguratorModule, 5);
  LogSettings::addSink(*this, kExecutorModule, 2);
}

TraceRecorder::~TraceRecorder() { LogSettings::removeSink(*this); }

void TraceRecorder::phaseBegins(const char* phase) {
  if (!Trace::on()) return;
  TraceEvent(TraceKind::Phase).with(TraceKey::Phase, phase).write();
}

void TraceRecorder::startEnds() { Trace::workFor({}, false); }

void TraceRecorder::write(const LogRecord& record) {
  if (Trace::countsCalls()) Trace::guarded([&] { takeLine(record); });
}

void TraceRecorder::takeLine(const LogRecord& record) {
  if (record.module == kConfiguratorModule) {
    const ConfiguratorEvent event = readConfiguratorLine(record.level, record.text);
    workBegins(event);
    if (Trace::on()) take(event);
    return workEnds(event);
  }
  const std::size_t at = record.text.find(kThrownByLazy);
  if (at == std::string::npos) return;
  if (Trace::on()) {
    failed("service", std::string_view(record.text).substr(at + kThrownByLazy.size()));
  }
  upIsOver();
}

void TraceRecorder::take(const ConfiguratorEvent& event) {
  switch (event.kind) {
    case Kind::ServiceLine:
      return lineBegins(event, "immediate");
    case Kind::LazyLine:
      return lineBegins(event, "lazy");
    case Kind::LegacyLine:
      return lineBegins(event, "legacy");
    case Kind::Record:
      return recordDeclared(event);
    case Kind::LazyCreation:
      return plain(TraceKind::CreationBegins);
    case Kind::CallingCreator:
      return plain(TraceKind::CreatorCalled);
    case Kind::CallingInit:
      return initBegins();
    case Kind::InitTook:
      return initEnded(event);
    case Kind::CreationFailed:
      return failed("service", event.text);
    case Kind::IncompleteLine:
    case Kind::InvalidLine:
      return failed("line", event.text);
    case Kind::ProcessFailed:
      return failed("process", event.text);
    case Kind::FileNotOpened:
      return failed("file", event.text);
    case Kind::Lookup:
      return lookup(event);
    case Kind::Opening:
    case Kind::Resolving:
    case Kind::ProcessStarted:
    case Kind::Other:
      return;
  }
}

void TraceRecorder::lookup(const ConfiguratorEvent& event) {
  if (!isNewLookup(event)) return;
  TraceEvent trace(TraceKind::Lookup);
  trace.with(TraceKey::Interface, event.interfaces).with(TraceKey::Kind, event.role);
  if (!event.channel.empty()) trace.with(TraceKey::Channel, event.channel);
  if (!event.protocol.empty()) trace.with(TraceKey::Protocol, event.protocol);
  trace.write();
}

/** Services may look up whenever they need something, and an invoker is looked up for each call. */
bool TraceRecorder::isNewLookup(const ConfiguratorEvent& event) {
  std::string key(Trace::servedByThisThread());
  for (const std::string& part : {event.role, event.interfaces, event.channel, event.protocol}) {
    key += '\n' + part;
  }
  const std::lock_guard lock(mutex_);
  if (lookups_.contains(key)) return false;
  if (lookups_.size() < kMostLookups) return lookups_.insert(std::move(key)).second;
  Trace::lose();
  return false;
}

void TraceRecorder::serviceAdded(const Service* service, const CommsChannelIfc* channel,
                                 const std::string& interfaces) {
  if (!Trace::on()) return;
  Trace::guarded([&] {
    TraceEvent event(TraceKind::ServiceRecorded);
    event.with(TraceKey::Type, describe(static_cast<const Executable*>(service)))
        .with(TraceKey::Interfaces, interfaces);
    if (channel != nullptr) event.with(TraceKey::Channel, channel->getName());
    event.write();
  });
}

void TraceRecorder::proxyAdded(const std::string& interface, const ProxyRequest* request,
                               const CommsChannelIfc* channel) {
  if (!Trace::on()) return;
  TraceEvent event(TraceKind::ProxyMade);
  event.with(TraceKey::Interface, interface);
  if (request != nullptr) event.with(TraceKey::Channel, request->getSvcChannel());
  if (channel != nullptr) event.with(TraceKey::Through, channel->getName());
  event.write();
}

void TraceRecorder::invokerAdded(const std::string& interface, const std::string& protocol) {
  if (!Trace::on()) return;
  TraceEvent(TraceKind::InvokerMade)
      .with(TraceKey::Interface, interface)
      .with(TraceKey::Protocol, protocol)
      .write();
}

void TraceRecorder::stopped() {
  if (Trace::on()) plain(TraceKind::ServicesStopped);
}

void TraceRecorder::deleted() {
  if (Trace::on()) plain(TraceKind::ServicesDeleted);
}

void TraceRecorder::proxiesDeleted() {
  if (Trace::on()) plain(TraceKind::ProxiesDeleted);
}

void TraceRecorder::invokersDeleted() {
  if (Trace::on()) plain(TraceKind::InvokersDeleted);
}

}  // namespace zerva
