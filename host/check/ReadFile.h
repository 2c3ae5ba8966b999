#pragma once

#include <optional>
#include <string>

#include "host/check/CheckSubject.h"

namespace zerva {

/**
 * Reads and cuts a directive file. Waits for nobody: a pipe is not opened.
 *
 * @returns the file; nothing when it is missing or cannot be opened.
 */
std::optional<CheckedFile> readCheckedFile(const std::string& path);

}  // namespace zerva
