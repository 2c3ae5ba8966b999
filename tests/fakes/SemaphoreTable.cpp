#include "tests/fakes/SemaphoreTable.h"

#include <algorithm>
#include <mutex>

namespace zerva::fakes {
namespace {

struct Table {
  std::mutex mutex;
  std::vector<std::string> held;
  std::vector<std::string> names;
  std::vector<std::string> waitedFor;
  bool threadsMayWait = false;
};

Table& table() {
  static Table instance;
  return instance;
}

}  // namespace

void SemaphoreTable::taken(const std::string& name) {
  const std::lock_guard lock(table().mutex);
  table().held.push_back(name);
}

void SemaphoreTable::given(const std::string& name) {
  const std::lock_guard lock(table().mutex);
  auto& held = table().held;
  const auto last = std::find(held.rbegin(), held.rend(), name);
  if (last != held.rend()) held.erase(std::next(last).base());
}

std::vector<std::string> SemaphoreTable::held() {
  const std::lock_guard lock(table().mutex);
  return table().held;
}

void SemaphoreTable::clear() {
  const std::lock_guard lock(table().mutex);
  table().held.clear();
  table().names.clear();
  table().threadsMayWait = false;
}

void SemaphoreTable::letThreadsWait() {
  const std::lock_guard lock(table().mutex);
  table().threadsMayWait = true;
}

bool SemaphoreTable::threadsMayWait() {
  const std::lock_guard lock(table().mutex);
  return table().threadsMayWait;
}

void SemaphoreTable::waits(const std::string& name) {
  const std::lock_guard lock(table().mutex);
  table().waitedFor.push_back(name);
}

void SemaphoreTable::waitsNoMore(const std::string& name) {
  const std::lock_guard lock(table().mutex);
  auto& waited = table().waitedFor;
  const auto first = std::find(waited.begin(), waited.end(), name);
  if (first != waited.end()) waited.erase(first);
}

std::vector<std::string> SemaphoreTable::waitedFor() {
  const std::lock_guard lock(table().mutex);
  return table().waitedFor;
}

void SemaphoreTable::nameNext(const std::vector<std::string>& names) {
  const std::lock_guard lock(table().mutex);
  table().names = names;
}

std::string SemaphoreTable::nextName() {
  const std::lock_guard lock(table().mutex);
  if (table().names.empty()) return {};
  const std::string name = table().names.front();
  table().names.erase(table().names.begin());
  return name;
}

}  // namespace zerva::fakes
