#include "runtime/libClientUtils/trace/TraceNames.h"

#include <array>
#include <cstddef>

namespace zerva {
namespace {

// In the order of the enumerations.
constexpr std::array<std::string_view, 35> kKinds = {"trace",
                                                     "phase",
                                                     "process_started",
                                                     "failed",
                                                     "lost",
                                                     "service_declared",
                                                     "record_declared",
                                                     "creation_begins",
                                                     "library_opened",
                                                     "symbol_resolved",
                                                     "creator_called",
                                                     "channel_opened",
                                                     "executor_made",
                                                     "service_recorded",
                                                     "announcement",
                                                     "init_begins",
                                                     "init_ended",
                                                     "executor_started",
                                                     "thread_running",
                                                     "first_request",
                                                     "lookup",
                                                     "question",
                                                     "proxy_made",
                                                     "invoker_made",
                                                     "waited",
                                                     "call",
                                                     "calls",
                                                     "executor_stopped",
                                                     "services_stopped",
                                                     "executor_deleted",
                                                     "channel_closed",
                                                     "library_closed",
                                                     "services_deleted",
                                                     "proxies_deleted",
                                                     "invokers_deleted"};
static_assert(kKinds.size() == static_cast<std::size_t>(TraceKind::InvokersDeleted) + 1);

constexpr std::array<std::string_view, 30> kKeys = {
    "answer",  "bits",    "body", "by",      "channel",   "creator",    "duration", "error",
    "events",  "file",    "for",  "from",    "interface", "interfaces", "kind",     "lazy",
    "library", "method",  "mode", "phase",   "pid",       "program",    "protocol", "symbol",
    "text",    "through", "type", "version", "wall",      "what"};
static_assert(kKeys.size() == static_cast<std::size_t>(TraceKey::What) + 1);

}  // namespace

std::string_view nameOf(TraceKind kind) { return kKinds[static_cast<std::size_t>(kind)]; }

std::string_view nameOf(TraceKey key) { return kKeys[static_cast<std::size_t>(key)]; }

}  // namespace zerva
