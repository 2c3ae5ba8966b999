#include "tests/fakes/Platform.h"

#include <mutex>

#include "tests/fakes/Creators.h"
#include "tests/fakes/PlatformInternal.h"
#include "tests/fakes/SemaphoreTable.h"

namespace zerva::fakes {
namespace {

struct Hook {
  std::string call;
  std::function<void()> run;
  bool once;
  bool spent = false;
};

struct Scripts {
  std::recursive_mutex mutex;
  std::vector<Hook> hooks;
  std::vector<std::pair<std::string, long>> answers;
  std::map<std::string, int> logLevels;
  std::map<std::string, Library> libraries;
  std::string version;
  std::map<std::string, std::string> replies;
  std::function<std::optional<std::string>(const std::string&, const std::string&)> replier;
  std::int64_t monotonic = 0;
  std::int64_t wallSeconds = 0;
  std::int64_t wallMicroseconds = 0;
};

Scripts& scripts() {
  static Scripts instance;
  return instance;
}

bool beginsWith(const std::string& text, const std::string& beginning) {
  return text.compare(0, beginning.size(), beginning) == 0;
}

constexpr std::int64_t kFirstMonotonic = 1'000'000'000'000;
constexpr int kAllLevels = 9;
constexpr const char* kVersion = "7.8.9-recording";

}  // namespace

void Platform::reset() {
  Turn::clear();
  {
    Scripts& all = scripts();
    const std::lock_guard lock(all.mutex);
    all.hooks.clear();
    all.answers.clear();
    all.logLevels.clear();
    all.libraries.clear();
    all.version = kVersion;
    all.replies.clear();
    all.replier = nullptr;
    all.monotonic = kFirstMonotonic;
    all.wallSeconds = 0;
    all.wallMicroseconds = 0;
  }
  Creators::clear();
  SemaphoreTable::clear();
  Objects::clear();
  Trace::clear();
}

void Platform::on(const std::string& call, std::function<void()> hook) {
  const std::lock_guard lock(scripts().mutex);
  scripts().hooks.push_back(Hook{call, std::move(hook), false});
}

void Platform::once(const std::string& call, std::function<void()> hook) {
  const std::lock_guard lock(scripts().mutex);
  scripts().hooks.push_back(Hook{call, std::move(hook), true});
}

void Platform::runHooks(const std::string& text) {
  std::vector<std::function<void()>> due;
  {
    const std::lock_guard lock(scripts().mutex);
    for (Hook& hook : scripts().hooks) {
      if (hook.spent || !beginsWith(text, hook.call)) continue;
      hook.spent = hook.once;
      due.push_back(hook.run);
    }
  }
  for (const auto& run : due) run();
}

void Platform::answer(const std::string& call, long result) {
  const std::lock_guard lock(scripts().mutex);
  scripts().answers.emplace_back(call, result);
}

long Platform::answerOf(const std::string& call, long natural) {
  const std::lock_guard lock(scripts().mutex);
  for (const auto& [beginning, result] : scripts().answers) {
    if (beginsWith(call, beginning)) return result;
  }
  return natural;
}

void Platform::logLevel(const std::string& module, int level) {
  const std::lock_guard lock(scripts().mutex);
  scripts().logLevels[module] = level;
}

int Platform::logLevelOf(const std::string& module) {
  const std::lock_guard lock(scripts().mutex);
  const auto found = scripts().logLevels.find(module);
  return found == scripts().logLevels.end() ? kAllLevels : found->second;
}

void Platform::nameSemaphores(const std::vector<std::string>& names) {
  SemaphoreTable::nameNext(names);
}

Library& Platform::library(const std::string& path) {
  const std::lock_guard lock(scripts().mutex);
  return scripts().libraries[path];
}

const Library* Platform::findLibrary(const std::string& path) {
  const std::lock_guard lock(scripts().mutex);
  const auto found = scripts().libraries.find(path);
  return found == scripts().libraries.end() ? nullptr : &found->second;
}

void Platform::setVersion(const std::string& text) {
  const std::lock_guard lock(scripts().mutex);
  scripts().version = text;
}

std::string Platform::version() {
  const std::lock_guard lock(scripts().mutex);
  return scripts().version;
}

void Platform::reply(const std::string& request, const std::string& reply) {
  const std::lock_guard lock(scripts().mutex);
  scripts().replies[request] = reply;
}

void Platform::replyWith(
    std::function<std::optional<std::string>(const std::string&, const std::string&)> replier) {
  const std::lock_guard lock(scripts().mutex);
  scripts().replier = std::move(replier);
}

std::optional<std::string> Platform::replyTo(const std::string& channel,
                                             const std::string& request) {
  const std::lock_guard lock(scripts().mutex);
  const auto found = scripts().replies.find(request);
  if (found != scripts().replies.end()) return found->second;
  if (scripts().replier) return scripts().replier(channel, request);
  return std::nullopt;
}

void Platform::advance(std::int64_t nanoseconds) {
  const std::int64_t end = monotonic() + nanoseconds;
  Expiries::deliverUntil(end);
  const std::lock_guard lock(scripts().mutex);
  scripts().monotonic = end;
}

void Platform::setMonotonic(std::int64_t seconds, std::int64_t nanoseconds) {
  const std::lock_guard lock(scripts().mutex);
  scripts().monotonic = seconds * 1'000'000'000 + nanoseconds;
}

std::int64_t Platform::monotonic() {
  const std::lock_guard lock(scripts().mutex);
  return scripts().monotonic;
}

void Platform::setWallClock(std::int64_t seconds, std::int64_t microseconds) {
  const std::lock_guard lock(scripts().mutex);
  scripts().wallSeconds = seconds;
  scripts().wallMicroseconds = microseconds;
}

std::int64_t Platform::wallSeconds() {
  const std::lock_guard lock(scripts().mutex);
  return scripts().wallSeconds;
}

std::int64_t Platform::wallMicroseconds() {
  const std::lock_guard lock(scripts().mutex);
  return scripts().wallMicroseconds;
}

void Platform::settle() { Turn::runSettled(); }

}  // namespace zerva::fakes
