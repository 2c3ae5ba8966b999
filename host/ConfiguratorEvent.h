#pragma once

#include <chrono>
#include <string>

namespace zerva {

/** What a line that the configurator logs tells about its work. */
struct ConfiguratorEvent {
  enum class Kind {
    /** A line of the file is about to create a service now. */
    ServiceLine,
    /** A line of the file is about to open the channel of a lazy service. */
    LazyLine,
    /** A line of the file is about to create a legacy service. */
    LegacyLine,
    /** A lazy service is being created on the thread of its executor. */
    LazyCreation,
    /** A line lacks fields and is skipped. */
    IncompleteLine,
    /** A line has a keyword that is none. */
    InvalidLine,
    Opening,
    Resolving,
    CallingCreator,
    CallingInit,
    InitTook,
    /** Library, symbol or service could not be had. */
    CreationFailed,
    ProcessStarted,
    ProcessFailed,
    FileNotOpened,
    /** A line of the file says where a proxy or an invoker is. */
    Record,
    /** Somebody looks for an interface. */
    Lookup,
    /** Nothing that matters here. */
    Other
  };

  Kind kind = Kind::Other;
  /** The line as logged. */
  std::string text;
  std::string library;
  std::string creator;
  std::string channel;
  /** Interface names separated by single blanks. */
  std::string interfaces;
  /** The program of a process. */
  std::string program;
  /** What is recorded or looked for: "service", "proxy" or "invoker". */
  std::string role;
  std::string protocol;
  /** How long `init` took. */
  std::chrono::milliseconds duration{0};
};

/**
 * Reads a line that the configurator logged. Pure; any thread.
 *
 * @param level the line's level.
 * @param text the line.
 */
ConfiguratorEvent readConfiguratorLine(int level, const std::string& text);

}  // namespace zerva
