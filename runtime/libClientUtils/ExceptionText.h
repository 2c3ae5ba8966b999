#pragma once

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

}  // namespace zerva
