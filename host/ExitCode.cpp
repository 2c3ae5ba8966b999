#include "host/ExitCode.h"

namespace zerva {

std::string describeExitCodes() {
  return "Exit codes:\n"
         "  0  everything came up and went down in order\n"
         "  1  an unexpected error, told on standard error\n"
         "  2  the command line was not understood\n"
         "  3  the look-over of the file found errors; nothing was started\n"
         "  4  the file is missing or could not be read\n"
         "  5  an exception ended the start; what had come up was taken down in order\n"
         "  6  some line of the file brought nothing up, or a started program failed, by itself\n"
         "     too; the rest came up and went down in order\n"
         "  7  requests were still under way when the stop time-out was over; nothing was deleted\n"
         "  8  a second signal ended a start or a stop that hung\n"
         "  9  the log file could not be opened; nothing was started\n"
         " 10  the bus that was asked for could not be opened; nothing was started\n"
         " 11  a channel that was waited for was not served in time; nothing was started\n"
         " 12  the trace file could not be opened; nothing was started\n";
}

}  // namespace zerva
