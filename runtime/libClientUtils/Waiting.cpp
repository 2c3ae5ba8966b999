#include "runtime/libClientUtils/Waiting.h"

#include <list>
#include <mutex>
#include <optional>
#include <utility>

namespace zerva {
namespace {

struct Wait {
  const Waiting* who;
  std::string what;
  std::optional<Description> whose;
};

struct Waits {
  std::mutex mutex;
  // Guarded by mutex.
  std::list<Wait> waits;
  std::function<std::string()> lastShutdown;
};

/** Never destroyed, since threads may still wait while the process ends. */
Waits& waits() {
  static auto* const instance = new Waits;
  return *instance;
}

}  // namespace

Waiting::Waiting(std::string what) { begin(std::move(what), std::nullopt); }

Waiting::Waiting(std::string what, Description whose) { begin(std::move(what), std::move(whose)); }

void Waiting::begin(std::string what, std::optional<Description> whose) {
  std::list<Wait> mine;
  mine.push_back({this, std::move(what), std::move(whose)});
  const std::lock_guard lock(waits().mutex);
  waits().waits.splice(waits().waits.end(), mine);
}

Waiting::~Waiting() {
  const std::lock_guard lock(waits().mutex);
  waits().waits.remove_if([this](const Wait& wait) { return wait.who == this; });
}

std::vector<std::string> Waiting::all() {
  const std::lock_guard lock(waits().mutex);
  std::vector<std::string> all;
  for (const Wait& wait : waits().waits) {
    all.push_back(wait.whose ? wait.what + wait.whose->text() : wait.what);
  }
  return all;
}

void Waiting::noteShutdown(std::function<std::string()> executor) {
  const std::lock_guard lock(waits().mutex);
  waits().lastShutdown.swap(executor);
}

std::string Waiting::lastShutdown() {
  const std::lock_guard lock(waits().mutex);
  return waits().lastShutdown ? waits().lastShutdown() : "";
}

}  // namespace zerva
