#include <vector>

#include "tests/fakes/PlatformInternal.h"

namespace zerva::fakes {
namespace {

struct Waiting {
  const void* key;
  std::function<bool()> work;
};

std::vector<Waiting>& waiting() {
  static std::vector<Waiting> instance;
  return instance;
}

}  // namespace

void Turn::whenSettled(const void* key, std::function<bool()> work) {
  waiting().push_back(Waiting{key, std::move(work)});
}

void Turn::cancel(const void* key) {
  std::erase_if(waiting(), [key](const Waiting& entry) { return entry.key == key; });
}

void Turn::runSettled() {
  // Work may bring new work; it is over when nothing had anything to do.
  for (bool busy = true; busy;) {
    busy = false;
    const std::vector<Waiting> now = waiting();
    for (const Waiting& entry : now) {
      if (entry.work()) busy = true;
    }
  }
}

void Turn::clear() { waiting().clear(); }

}  // namespace zerva::fakes
