#pragma once

#include <ostream>

namespace zerva {

/** How many processors the threads of a test have. */
enum class Processors { All, One };

/** How GoogleTest shows it. */
inline void PrintTo(Processors processors, std::ostream* to) {
  *to << (processors == Processors::All ? "AllProcessors" : "OneProcessor");
}

/** From here on this thread, and the threads and processes that it starts, have so many. */
void runOn(Processors processors);

}  // namespace zerva
