#include "framework/Semaphore.h"

#include <new>
#include <variant>

#include "runtime/libClientUtils/Permits.h"
#include "runtime/libClientUtils/RecursivePermits.h"

struct Semaphore::State {
  using Permits = std::variant<zerva::Permits, zerva::RecursivePermits>;

  State(int initial, int maximum, bool recursive)
      : permits(recursive ? Permits(std::in_place_type<zerva::RecursivePermits>, initial, maximum)
                          : Permits(std::in_place_type<zerva::Permits>, initial, maximum)) {}

  Permits permits;
};

Semaphore::Semaphore(int initial, int maximum, bool recursive) {
  static_assert(sizeof(State) <= kStateSize && alignof(State) <= alignof(std::max_align_t));
  new (state_) State(initial, maximum, recursive);
}

Semaphore::~Semaphore() { state().~State(); }

Semaphore::State& Semaphore::state() { return *std::launder(reinterpret_cast<State*>(state_)); }

bool Semaphore::take(int timeout) {
  return std::visit([timeout](auto& permits) { return permits.take(timeout); }, state().permits);
}

bool Semaphore::give() {
  return std::visit([](auto& permits) { return permits.give(); }, state().permits);
}
