#include "tests/fakes/Trace.h"

#include <mutex>

#include "tests/fakes/Platform.h"
#include "tests/fakes/SemaphoreTable.h"

namespace zerva::fakes {
namespace {

thread_local int currentDepth = 0;

struct Recorded {
  std::mutex mutex;
  std::vector<Event> events;
};

Recorded& recorded() {
  static Recorded instance;
  return instance;
}

}  // namespace

std::string Event::line() const {
  if (held.empty()) return text;
  std::string line = text + " [";
  for (const std::string& name : held) line += (&name == &held.front() ? "" : ", ") + name;
  return line + "]";
}

void Trace::record(const std::string& text, const std::string& message, int sourceLine) {
  Event event{text, currentDepth, SemaphoreTable::held(), message, sourceLine};
  {
    const std::lock_guard lock(recorded().mutex);
    recorded().events.push_back(std::move(event));
  }
  const Nested nested;
  Platform::runHooks(text);
}

std::vector<std::string> Trace::lines(int depth) {
  std::vector<std::string> lines;
  for (const Event& event : events()) {
    if (event.depth == depth) lines.push_back(event.line());
  }
  return lines;
}

std::vector<std::string> Trace::everything() {
  std::vector<std::string> lines;
  for (const Event& event : events()) {
    lines.push_back(std::string(2 * static_cast<std::size_t>(event.depth), ' ') + event.line());
  }
  return lines;
}

std::vector<Event> Trace::events() {
  const std::lock_guard lock(recorded().mutex);
  return recorded().events;
}

void Trace::clear() {
  const std::lock_guard lock(recorded().mutex);
  recorded().events.clear();
}

int Trace::depth() { return currentDepth; }

Nested::Nested() { ++currentDepth; }
Nested::~Nested() { --currentDepth; }

}  // namespace zerva::fakes
