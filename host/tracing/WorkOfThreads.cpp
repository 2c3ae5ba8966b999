#include "host/tracing/WorkOfThreads.h"

#include <string>

#include "runtime/libClientUtils/trace/Trace.h"

namespace zerva {
namespace {

using Kind = ConfiguratorEvent::Kind;

/** Whether the thread makes a lazy service, whose requests it serves. */
thread_local bool makesLazy = false;

std::string nameOfLegacy(const ConfiguratorEvent& event) {
  const std::string first = event.interfaces.substr(0, event.interfaces.find(' '));
  return first.empty() ? event.creator : first;
}

}  // namespace

void workBegins(const ConfiguratorEvent& event) {
  switch (event.kind) {
    case Kind::ServiceLine:
      return Trace::workFor(event.channel, true);
    case Kind::LazyLine:
      // Nothing of a lazy service runs while its line is read.
      return Trace::workFor(event.channel, true, false);
    case Kind::LegacyLine:
      return Trace::workFor(nameOfLegacy(event), true);
    case Kind::Record:
      return Trace::workFor({}, true, false);
    case Kind::LazyCreation:
      // It is made on the thread of its executor, which serves the service's channel.
      makesLazy = true;
      return Trace::workFor(Trace::servedByThisThread(), true);
    case Kind::IncompleteLine:
    case Kind::InvalidLine:
    case Kind::ProcessFailed:
    case Kind::FileNotOpened:
      // A line that is none of a service.
      return Trace::workFor({}, false, false);
    default:
      return;
  }
}

void workEnds(const ConfiguratorEvent& event) {
  if (event.kind == Kind::InitTook || event.kind == Kind::CreationFailed) upIsOver();
}

/** A thread that makes lazy services stays with them; that of the file goes on to the next line. */
void upIsOver() {
  if (makesLazy) return Trace::workFor(Trace::servedByThisThread(), false);
  Trace::workFor({}, false, false);
}

}  // namespace zerva
