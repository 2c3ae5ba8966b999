#include "host/tracing/TraceFile.h"

#include <unistd.h>

#include <cstdlib>

#include "runtime/libClientUtils/trace/Trace.h"

namespace zerva {
namespace {

constexpr const char* kVariable = "ZERVA_TRACE";
constexpr const char* kProcess = "%p";

std::string wanted(const std::string& path) {
  if (!path.empty()) return path;
  // No other thread is there yet.
  const char* const set = ::getenv(kVariable);  // NOLINT(concurrency-mt-unsafe)
  return set == nullptr ? "" : set;
}

std::string nameOfThisProcess(std::string path) {
  for (std::size_t at = 0; (at = path.find(kProcess, at)) != std::string::npos;) {
    const std::string id = std::to_string(::getpid());
    path.replace(at, 2, id);
    at += id.size();
  }
  return path;
}

}  // namespace

TraceFile::TraceFile(const std::string& path, const std::string& about) {
  const std::string pattern = wanted(path);
  if (pattern.empty()) return;
  if (pattern.find(kProcess) != std::string::npos) {
    ::setenv(kVariable, pattern.c_str(), 1);  // NOLINT(concurrency-mt-unsafe)
  } else {
    // One file is not for two processes.
    ::unsetenv(kVariable);  // NOLINT(concurrency-mt-unsafe)
  }
  const std::string file = nameOfThisProcess(pattern);
  const std::string why = Trace::start(file, about);
  if (!why.empty()) error_ = "cannot write the trace " + file + ": " + why;
}

TraceFile::~TraceFile() { Trace::stop(); }

void TraceFile::writeOut() { Trace::flush(); }

}  // namespace zerva
