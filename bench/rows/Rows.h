#pragma once

#include "bench/harness/Bench.h"

// The benchmarks of the system beside their floors. Each fills its tables and tells its aims.

namespace zerva::bench {

void bringUp(Bench& bench);
void lazyDeclaration(Bench& bench);
void legacyService(Bench& bench);

}  // namespace zerva::bench
