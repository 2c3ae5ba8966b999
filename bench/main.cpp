// Measures the system beside what the machine alone could do.

#include "bench/rows/Rows.h"

int main(int argc, char** argv) {
  using namespace zerva::bench;
  return benchMain(argc, argv,
                   {{"bring-up", "immediate services up and down", &bringUp},
                    {"lazy", "lazy services declared", &lazyDeclaration},
                    {"legacy", "legacy services up", &legacyService}});
}
