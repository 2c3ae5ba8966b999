#include "host/trace/TraceResult.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <system_error>

#include "host/trace/RunModelBuilder.h"
#include "host/trace/TraceReader.h"

namespace zerva {

int guardedTraceWork(const std::function<int()>& work) {
  try {
    return work();
  } catch (const TraceError& error) {
    std::fprintf(stderr, "%s\n", error.what());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zerva: %s\n", error.what());
  }
  return kTraceFailed;
}

int writeTraceResult(const std::string& text, const std::string& path) {
  const bool toFile = !path.empty() && path != "-";
  std::ofstream file;
  if (toFile) file.open(path, std::ios::binary | std::ios::trunc);
  std::ostream& out = toFile ? file : std::cout;
  out << text << std::flush;
  if (out) return kTraceDone;
  std::fprintf(stderr, "zerva: cannot write %s: %s\n",
               toFile ? path.c_str() : "the standard output",
               std::generic_category().message(errno).c_str());
  return kTraceFailed;
}

std::vector<RunModel> readTraces(const std::vector<std::string>& paths) {
  std::vector<RunModel> runs;
  for (const std::string& path : paths) {
    runs.push_back(readRun(path));
    if (const std::int64_t lost = runs.back().lost; lost > 0) {
      std::fprintf(stderr, "%s: %lld events are missing\n", path.c_str(),
                   static_cast<long long>(lost));
    }
  }
  return runs;
}

CLI::Option* addTraceOutput(CLI::App& verb, std::string& path) {
  return verb.add_option("-o,--output", path, "Where the result goes; default: standard output")
      ->type_name("FILE");
}

}  // namespace zerva
