#pragma once

#include <string>

namespace zerva {

/** With which code `status`, `watch` and `call` end; part of the command line's interface. */
enum class LiveExit : int {
  Good = 0,
  /** Something that nobody foresaw. */
  Unexpected = 1,
  Usage = 2,
  /** Something is wrong with what was looked at, or the call failed. */
  Trouble = 3,
  /** Nothing has the name that was asked for. */
  Unknown = 4,
  /** No invoker for the protocol is recorded. */
  NoInvoker = 5,
  /** There is no registry on the bus. */
  NoRegistry = 6,
  /** There is no bus that could be looked at. */
  NoBus = 10,
};

/** @returns the part of the help of `status` and `watch` that lists the codes. */
std::string describeStatusExits();

/** @returns the same for `call`. */
std::string describeCallExits();

}  // namespace zerva
