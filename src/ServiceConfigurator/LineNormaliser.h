#pragma once

#include <string>

namespace zerva {

/**
 * Brings the spacing of a line into its one canonical form, in place: words separated by one blank,
 * none at the ends, and none after a first word that ends in its first colon. What counts as space
 * is the global locale's matter. Any thread may call it.
 */
void normaliseLine(std::string& text);

}  // namespace zerva
