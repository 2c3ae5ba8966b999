#include "host/live/LiveExit.h"

namespace zerva {

std::string describeStatusExits() {
  return "Exit codes:\n"
         "  0  no service failed or is stuck, and every process that tells how it is answered\n"
         "  1  an unexpected error, told on standard error\n"
         "  2  the command line was not understood\n"
         "  3  a service failed or is stuck, or a process did not answer\n"
         "  4  there is no service of that name\n"
         " 10  there is no bus, or it cannot be used\n";
}

std::string describeCallExits() {
  return "Exit codes:\n"
         "  0  the service answered\n"
         "  1  an unexpected error, told on standard error\n"
         "  2  the command line was not understood\n"
         "  3  the call failed: an exception of the service, or no answer\n"
         "  4  the registry does not know the interface\n"
         "  5  no invoker of the interface is recorded for the protocol\n"
         "  6  nobody serves the registry on the bus\n"
         " 10  there is no bus, or it cannot be used\n";
}

}  // namespace zerva
