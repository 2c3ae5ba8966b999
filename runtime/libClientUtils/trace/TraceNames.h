#pragma once

#include <cstdint>
#include <string_view>

namespace zerva {

/** What happened; docs/trace.md says what each means and which fields it has. */
enum class TraceKind : std::uint8_t {
  Trace,
  Phase,
  ProcessStarted,
  Failed,
  Lost,
  ServiceDeclared,
  RecordDeclared,
  CreationBegins,
  LibraryOpened,
  SymbolResolved,
  CreatorCalled,
  ChannelOpened,
  ExecutorMade,
  ServiceRecorded,
  Announcement,
  InitBegins,
  InitEnded,
  ExecutorStarted,
  ThreadRunning,
  FirstRequest,
  Lookup,
  Question,
  ProxyMade,
  InvokerMade,
  Waited,
  Call,
  Calls,
  ExecutorStopped,
  ServicesStopped,
  ExecutorDeleted,
  ChannelClosed,
  LibraryClosed,
  ServicesDeleted,
  ProxiesDeleted,
  InvokersDeleted
};

/** The name of a field of an event. */
enum class TraceKey : std::uint8_t {
  Answer,
  Bits,
  Body,
  By,
  Channel,
  Creator,
  Duration,
  Error,
  Events,
  File,
  For,
  From,
  Interface,
  Interfaces,
  Kind,
  Lazy,
  Library,
  Method,
  Mode,
  Phase,
  Pid,
  Program,
  Protocol,
  Symbol,
  Text,
  Through,
  Type,
  Version,
  Wall,
  What
};

/** @returns the name as it stands in a file. */
std::string_view nameOf(TraceKind kind);
std::string_view nameOf(TraceKey key);

}  // namespace zerva
