#pragma once

#include <string>

namespace zerva {

/** With which code `zerva` ends. The numbers are part of the command line's interface. */
enum class ExitCode : int {
  /** Everything that the file asks for came up and went down in order. */
  WentDown = 0,
  /** Something that nobody foresaw; it is told on standard error. */
  Unexpected = 1,
  /** The command line was not understood; nothing was started. */
  Usage = 2,
  /** The look-over of the file found errors; nothing was started. */
  FileRefused = 3,
  /** The file is missing or could not be read. */
  FileNotRead = 4,
  /** An exception ended the start; what had come up was taken down in order. */
  StartFailed = 5,
  /**
   * Some line of the file brought nothing up, or a started program failed, by itself too; the rest
   * came up and went down in order.
   */
  Incomplete = 6,
  /** Requests were still under way at the end of the wait for them; nothing was deleted. */
  StillBusy = 7,
  /** A second signal ended a start or a stop that hung. */
  Forced = 8,
  /** The log file could not be opened; nothing was started. */
  NoLogFile = 9,
  /** The bus that was asked for could not be opened; nothing was started. */
  NoBus = 10,
  /** A channel that was waited for was not served in time; nothing was started. */
  NotServed = 11,
  /** The trace file could not be opened; nothing was started. */
  NoTraceFile = 12,
};

/** @returns the part of the help that lists the codes, one a line. */
std::string describeExitCodes();

}  // namespace zerva
