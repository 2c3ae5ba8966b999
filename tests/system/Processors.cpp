#include "tests/system/Processors.h"

#include <gtest/gtest.h>
#include <sched.h>

namespace zerva {

void runOn(Processors processors) {
  if (processors == Processors::All) return;
  cpu_set_t allowed;
  CPU_ZERO(&allowed);
  sched_getaffinity(0, sizeof allowed, &allowed);
  int first = 0;
  while (first < CPU_SETSIZE && !CPU_ISSET(first, &allowed)) ++first;
  CPU_ZERO(&allowed);
  CPU_SET(first, &allowed);
  ASSERT_EQ(sched_setaffinity(0, sizeof allowed, &allowed), 0);
}

}  // namespace zerva
