#pragma once

#include <cxxabi.h>

#include <optional>
#include <string>

#include "framework/Export.h"

namespace zerva {

/**
 * Called inside a `catch` block.
 *
 * @returns the message of the exception that is being handled; the text itself when a text was
 *     thrown; else the name of its type. Nothing of the exception is kept.
 */
ZERVA_EXPORT std::string currentExceptionText();

/**
 * Runs somebody else's code.
 *
 * @returns the text of the exception that left it, or nothing. A thread that is being ended goes on
 *     to end: its unwinding passes.
 */
template <typename Body>
// A forced unwinding is caught without an object, which the reference that names it is bound to.
__attribute__((no_sanitize("null"))) std::optional<std::string> exceptionOf(const Body& body) {
  try {
    body();
  } catch (const abi::__forced_unwind&) {
    throw;
  } catch (...) {
    return currentExceptionText();
  }
  return std::nullopt;
}

}  // namespace zerva
