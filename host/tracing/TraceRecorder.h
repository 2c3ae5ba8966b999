#pragma once

#include <mutex>
#include <set>
#include <string>

#include "host/ConfiguratorEvent.h"
#include "host/RepositoryObserver.h"
#include "runtime/libLoggingHandler/LogSink.h"

namespace zerva {

/**
 * Puts into the trace what the platform does not see: what the configurator tells of its work in
 * the lines that it logs, and what becomes of what its repository is given. It says besides for
 * which service each thread works.
 */
class TraceRecorder final : public LogSink, public RepositoryObserver {
 public:
  TraceRecorder();
  ~TraceRecorder();
  TraceRecorder(const TraceRecorder&) = delete;
  TraceRecorder& operator=(const TraceRecorder&) = delete;

  /** The host begins with something. @param phase one of those that docs/trace.md lists. */
  void phaseBegins(const char* phase);

  /** The file was processed on this thread. */
  void startEnds();

  void write(const LogRecord& record) override;
  void serviceAdded(const Service* service, const CommsChannelIfc* channel,
                    const std::string& interfaces) override;
  void proxyAdded(const std::string& interface, const ProxyRequest* request,
                  const CommsChannelIfc* channel) override;
  void invokerAdded(const std::string& interface, const std::string& protocol) override;
  void stopped() override;
  void deleted() override;
  void proxiesDeleted() override;
  void invokersDeleted() override;

 private:
  void takeLine(const LogRecord& record);
  void take(const ConfiguratorEvent& event);
  void lookup(const ConfiguratorEvent& event);
  bool isNewLookup(const ConfiguratorEvent& event);

  std::mutex mutex_;
  std::set<std::string> lookups_;  // guarded by mutex_
};

}  // namespace zerva
