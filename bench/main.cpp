// Measures the system beside what the machine alone could do.

#include "bench/rows/Rows.h"

int main(int argc, char** argv) {
  using namespace zerva::bench;
  return benchMain(argc, argv,
                   {{"bring-up", "immediate services up and down", &bringUp},
                    {"lazy", "lazy services declared", &lazyDeclaration},
                    {"legacy", "legacy services up", &legacyService},
                    {"lines", "directive lines without effect", &directiveLines},
                    {"find", "look-ups of recorded proxies", &findRecorded},
                    {"find-first", "look-ups that make the proxy", &findFirst},
                    {"call", "calls within a process, one core", &callOneCore},
                    {"call-two-cores", "calls within a process, two cores", &callTwoCores},
                    {"pipelined", "messages without waiting", &pipelined},
                    {"call-processes", "calls between processes", &callProcesses},
                    {"payload", "64 KiB between processes", &payload},
                    {"interceptors", "messages that somebody sees", &interceptors},
                    {"tracing", "what a point of the trace costs", &tracing},
                    {"capacity", "as many services as a process holds", &capacity},
                    {"growth", "how cost grows with the number of services", &growth}});
}
