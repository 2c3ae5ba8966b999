#include "runtime/libClientUtils/Processors.h"

#include <sched.h>

namespace zerva {

bool mayUseSeveralProcessors() {
  cpu_set_t processors;
  // On a machine with more processors than the set has room for the call fails.
  return ::sched_getaffinity(0, sizeof(processors), &processors) != 0 || CPU_COUNT(&processors) > 1;
}

}  // namespace zerva
