#include "tests/fakes/Objects.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <mutex>
#include <new>
#include <set>

#include "tests/fakes/Trace.h"

namespace zerva::fakes {
namespace {

/** Memory of objects that have ended. Read by operator delete, so it must not use that itself. */
class Quarantine {
 public:
  void enter(const void* address) {
    const std::lock_guard lock(mutex_);
    if (count_ == capacity_) {
      capacity_ = capacity_ == 0 ? 256 : 2 * capacity_;
      addresses_ = static_cast<Entry*>(std::realloc(addresses_, capacity_ * sizeof(Entry)));
    }
    addresses_[count_++] = Entry{const_cast<void*>(address), false};
  }

  /** @returns whether the memory is kept; it is then freed by `clear`. */
  bool keeps(void* address) {
    const std::lock_guard lock(mutex_);
    for (std::size_t i = 0; i < count_; ++i) {
      if (addresses_[i].address == address) return addresses_[i].onHeap = true;
    }
    return false;
  }

  void clear() {
    const std::lock_guard lock(mutex_);
    for (std::size_t i = 0; i < count_; ++i) {
      if (addresses_[i].onHeap) std::free(addresses_[i].address);
    }
    count_ = 0;
  }

 private:
  struct Entry {
    void* address;
    bool onHeap;
  };
  std::mutex mutex_;
  Entry* addresses_ = nullptr;
  std::size_t count_ = 0;
  std::size_t capacity_ = 0;
};

constinit Quarantine quarantine;

struct Table {
  std::mutex mutex;
  std::map<const void*, std::string> names;
  std::map<std::string, int> counters;
  std::set<const void*> alive;
  std::vector<const void*> forgotten;
};

Table& table() {
  // Never destroyed: what lives on for ever is to be reachable for ever.
  static Table& instance = *new Table;
  return instance;
}

}  // namespace

std::string Objects::born(const void* object, const std::string& kind) {
  const std::lock_guard lock(table().mutex);
  const std::string name = kind + "#" + std::to_string(++table().counters[kind]);
  table().names[object] = name;
  table().alive.insert(object);
  return name;
}

void Objects::alias(const void* address, const void* object) {
  const std::lock_guard lock(table().mutex);
  table().names[address] = table().names[object];
}

void Objects::call(const void* address, const std::string& name) {
  const std::lock_guard lock(table().mutex);
  table().names[address] = name;
}

std::string Objects::name(const void* address) {
  if (address == nullptr) return "null";
  const std::lock_guard lock(table().mutex);
  const auto found = table().names.find(address);
  return found == table().names.end() ? "unknown" : found->second;
}

void Objects::renumber() {
  const std::lock_guard lock(table().mutex);
  table().counters.clear();
}

void Objects::unborn(const void* object) {
  const std::lock_guard lock(table().mutex);
  table().alive.erase(object);
  table().names.erase(object);
}

bool Objects::died(const void* object) {
  const std::string objectName = name(object);
  bool first = false;
  {
    const std::lock_guard lock(table().mutex);
    first = table().alive.erase(object) == 1;
    if (first) quarantine.enter(object);
  }
  Trace::record((first ? "~" : "AGAIN ~") + objectName);
  if (!first) ADD_FAILURE() << objectName << " was deleted again";
  return first;
}

bool Objects::isAlive(const void* object) {
  const std::lock_guard lock(table().mutex);
  return table().alive.count(object) == 1;
}

std::vector<std::string> Objects::living() {
  const std::lock_guard lock(table().mutex);
  std::vector<std::string> names;
  for (const void* object : table().alive) names.push_back(table().names[object]);
  std::sort(names.begin(), names.end());
  return names;
}

void Objects::clear() {
  const std::lock_guard lock(table().mutex);
  table().forgotten.insert(table().forgotten.end(), table().alive.begin(), table().alive.end());
  table().names.clear();
  table().counters.clear();
  table().alive.clear();
  quarantine.clear();
}

}  // namespace zerva::fakes

void* operator new(std::size_t size) {
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return std::malloc(size == 0 ? 1 : size);
}

void operator delete(void* memory) noexcept {
  if (memory != nullptr && !zerva::fakes::quarantine.keeps(memory)) std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept { operator delete(memory); }
