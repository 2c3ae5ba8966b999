#include "tests/conformance/Lines.h"

#include <sstream>

#include "tests/fakes/Platform.h"

namespace zerva::conformance {

std::string guarded(int level, const std::string& line) {
  const bool on = level <= fakes::Platform::logLevelOf("Service Config");
  const std::string question = "loggingOn(\"Service Config\", " + std::to_string(level) + ") -> ";
  return on ? question + "true\n" + line : question + "false";
}

std::string printed(const std::string& text) { return "printed " + fakes::inQuotes(text + "\n"); }

std::string whileHolding(const std::string& semaphores, const Lines& lines) {
  std::istringstream stream(asText(lines));
  std::string result;
  for (std::string line; std::getline(stream, line);) {
    result += (result.empty() ? "" : "\n") + line + " [" + semaphores + "]";
  }
  return result;
}

std::string locked(const std::string& semaphore, const Lines& lines) {
  Lines inside = lines;
  inside.push_back(semaphore + ".give()");
  return semaphore + ".take(-1)\n" + whileHolding(semaphore, inside);
}

std::string asText(const Lines& lines) {
  std::string text;
  for (const std::string& line : lines) text += (text.empty() ? "" : "\n") + line;
  return text;
}

}  // namespace zerva::conformance
