#pragma once

#include "bench/harness/Bench.h"

// What others do, beside ours. Each fills its tables and tells its aims.

namespace zerva::bench {

void loaders(Bench& bench);
void messaging(Bench& bench);
void desktopBus(Bench& bench);

}  // namespace zerva::bench
