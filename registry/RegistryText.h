#pragma once

#include <string>
#include <vector>

namespace zerva {

/** A text of the registry protocol: a word, a colon, and fields with commas between them. */
struct RegistryText {
  std::string word;
  std::vector<std::string> fields;
};

/**
 * Takes a text apart. Nothing is trimmed, nothing can be quoted, and empty fields count.
 *
 * @throws ZervaException when there is no colon, or not the number of fields that goes with the
 *     word.
 */
RegistryText parseRegistryText(const std::string& text);

}  // namespace zerva
