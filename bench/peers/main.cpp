// Measures what others do, beside the system.

#include "bench/peers/Peers.h"

int main(int argc, char** argv) {
  using namespace zerva::bench;
  return benchMain(argc, argv,
                   {{"peers-loading", "plug-in loaders", &loaders},
                    {"peers-call", "messaging within a process", &messaging},
                    {"peers-processes", "desktop buses", &desktopBus}});
}
