#pragma once

#include <memory>
#include <string>
#include <utility>

#include "framework/Export.h"
#include "runtime/libClientUtils/Envelope.h"

namespace zerva {

/**
 * @returns an empty text for a message, that nobody else has: one that an earlier message had, if
 *     there is one, with the memory that it took. Any thread.
 */
ZERVA_EXPORT std::shared_ptr<std::string> newText();

/** @returns a text for a message that holds the bytes. */
inline Payload textOfBytes(const std::string& bytes) {
  std::shared_ptr<std::string> text = newText();
  *text = bytes;
  return text;
}

/** @returns data that may be kept: a copy of borrowed ones, else the same. */
inline Payload kept(Payload data) {
  return isBorrowed(data) ? textOfBytes(*data) : std::move(data);
}

}  // namespace zerva
