#include "runtime/libServiceExecutor/UnrecordedServices.h"

#include <mutex>
#include <vector>

#include "runtime/libServiceExecutor/Drain.h"

namespace zerva {

namespace {

struct Kept {
  std::mutex mutex;
  std::vector<Executable*> services;  // guarded by mutex
};

Kept& kept() {
  static Kept& all = *new Kept;  // never destroyed: that is its purpose
  return all;
}

}  // namespace

void keepUnrecorded(Executable* service) {
  if (service != nullptr) {
    const std::lock_guard lock(kept().mutex);
    kept().services.push_back(service);
  }
}

std::size_t unrecordedServices() {
  const std::lock_guard lock(kept().mutex);
  return kept().services.size();
}

}  // namespace zerva
