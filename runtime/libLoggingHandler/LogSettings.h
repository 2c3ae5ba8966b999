#pragma once

#include <string>

#include "framework/Export.h"
#include "runtime/libLoggingHandler/LogSink.h"

namespace zerva {

/**
 * Where log lines go and which are asked for; one setting for the process. Lines go to standard
 * error up to level 4 unless this says otherwise. Any thread may call any operation.
 */
class ZERVA_EXPORT LogSettings {
 public:
  /** Sets the level up to which modules are logged that have no level of their own; at first 4. */
  static void setDefaultLevel(int level);

  /** Gives a module a level of its own. */
  static void setLevel(const std::string& module, int level);

  /**
   * Turns standard error on or off. When it is a connection to the journal, as JOURNAL_STREAM in
   * the environment tells, each line begins with its priority; otherwise it is plain text with time
   * and level. Turning it on looks again which of the two it is.
   */
  static void logToStandardError(bool on);

  /**
   * Appends lines to a file from now on, each written at once, instead of to the file before.
   *
   * @param path the file, made when it is not there; empty to write to no file any more.
   * @param error gets why the file could not be opened.
   * @returns false when the file could not be opened; the file before is then kept.
   */
  static bool logToFile(const std::string& path, std::string& error);

  /** Turns the system log on or off; at first it is off. */
  static void logToSystemLog(bool on);

  /**
   * Adds a sink. Levels of the ordinary sinks do not count for it; `loggingOnAppUni` says yes for
   * what it takes. Lines at level 3 and more that are on for the sake of a sink only do not reach
   * the ordinary sinks.
   *
   * @param sink not owned; lives until `removeSink` returned.
   * @param module whose lines it gets; empty for all modules.
   * @param level up to which it gets lines.
   */
  static void addSink(LogSink& sink, const std::string& module, int level);

  /**
   * Removes a sink and waits until no other thread is in a call of it any more. A sink may remove
   * itself; two threads that do so inside the same sink do not wait for each other.
   */
  static void removeSink(LogSink& sink);

  /** Waits until lines that are being written have been written. */
  static void flush();
};

}  // namespace zerva
