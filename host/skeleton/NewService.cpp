#include "host/skeleton/NewService.h"

#include <cstdio>
#include <exception>
#include <filesystem>

#include "host/skeleton/ServiceName.h"
#include "host/skeleton/Skeleton.h"

namespace zerva {

std::string describeNewExitCodes() {
  return "Exit codes:\n"
         "  0  the folder was written\n"
         "  1  it is there already or cannot be written; nothing was left behind\n"
         "  2  the command line was not understood, or no service can have that name\n";
}

int newService(const NewServiceOptions& options) {
  if (const std::string why = whyNoServiceName(options.name); !why.empty()) {
    std::fprintf(stderr, "zerva: '%s' is no name for a service: %s\n", options.name.c_str(),
                 why.c_str());
    return 2;
  }
  try {
    const auto folder = std::filesystem::path(options.in) / options.name;
    const auto written = writeSkeleton(folder, options.name);
    std::printf("%s:\n", folder.c_str());
    for (const std::string& file : written) std::printf("  %s\n", file.c_str());
    std::printf("%s tells how it is built and run\n", (folder / "README.md").c_str());
  } catch (const std::exception& exception) {
    std::fprintf(stderr, "zerva: %s\n", exception.what());
    return 1;
  }
  return 0;
}

}  // namespace zerva
