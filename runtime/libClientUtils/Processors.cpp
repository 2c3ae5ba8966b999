#include "runtime/libClientUtils/Processors.h"

#include <sched.h>

namespace zerva {

unsigned usableProcessors() {
  cpu_set_t processors;
  // On a machine with more processors than the set has room for the call fails.
  if (::sched_getaffinity(0, sizeof(processors), &processors) != 0) return CPU_SETSIZE;
  return static_cast<unsigned>(CPU_COUNT(&processors));
}

bool mayUseSeveralProcessors() { return usableProcessors() > 1; }

}  // namespace zerva
