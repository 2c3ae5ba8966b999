#pragma once

#include "bench/harness/Bench.h"

// The benchmarks of the system beside their floors. Each fills its tables and tells its aims.

namespace zerva::bench {

void bringUp(Bench& bench);
void lazyDeclaration(Bench& bench);
void legacyService(Bench& bench);
void directiveLines(Bench& bench);
void findRecorded(Bench& bench);
void findFirst(Bench& bench);
void callOneCore(Bench& bench);
void callTwoCores(Bench& bench);
void pipelined(Bench& bench);
void callProcesses(Bench& bench);
void payload(Bench& bench);
void interceptors(Bench& bench);
void tracing(Bench& bench);
void capacity(Bench& bench);
void growth(Bench& bench);

}  // namespace zerva::bench
