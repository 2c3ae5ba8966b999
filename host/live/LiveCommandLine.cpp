#include "host/live/LiveCommandLine.h"

#include <CLI/CLI.hpp>
#include <cmath>

namespace zerva {
namespace {

constexpr double kShortest = 0.001;
constexpr double kLongest = 1e6;

}  // namespace

CLI::Option* addBusOption(CLI::App& command, std::string& directory) {
  return command
      .add_option("--bus", directory,
                  "Directory of the bus; default: that of ZERVA_BUS in the environment")
      ->type_name("DIR");
}

CLI::Option* addSeconds(CLI::App& command, const char* name, std::chrono::milliseconds& time,
                        const char* help) {
  return command
      .add_option_function<double>(
          name,
          [&time](double value) { time = std::chrono::milliseconds{std::llround(value * 1000.0)}; },
          help)
      ->type_name("SECONDS")
      ->check(CLI::Range(kShortest, kLongest).description(""));
}

}  // namespace zerva
