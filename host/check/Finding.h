#pragma once

#include <cstddef>
#include <string>

namespace zerva {

/** How bad a finding is. */
enum class Severity {
  /** The start hangs or ends there, or what the line asks for does not come up or is never reached.
   */
  Error,
  /** It comes up, but probably not as it was meant. */
  Warning,
  /** Good to know. */
  Note,
};

/** @returns "error", "warning" or "note". */
const char* severityName(Severity severity);

/** Something in a directive file, or in what it names, that somebody should look at. */
struct Finding {
  std::string file;
  /** Counted from 1. */
  std::size_t line;
  /** Counted from 1, in bytes. */
  std::size_t column;
  /** One sentence. */
  std::string text;
  /** How many bytes from the column on are meant; 0 for the place before the column. */
  std::size_t length = 1;
  Severity severity = Severity::Error;
  /** Which rule found it, as `line-too-long`. */
  std::string code = {};
  /** What was probably meant where the finding is; empty when nobody knows. */
  std::string suggestion = {};
};

}  // namespace zerva
