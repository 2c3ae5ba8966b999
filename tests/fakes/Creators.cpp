#include "tests/fakes/Creators.h"

#include <array>
#include <stdexcept>
#include <utility>

namespace zerva::fakes {
namespace {

constexpr std::size_t kCreators = 32;

template <class T>
struct Pool {
  static inline std::array<std::function<T*()>, kCreators> bodies;
  static inline std::size_t used = 0;

  template <std::size_t N>
  static T* call() {
    return bodies[N]();
  }

  template <std::size_t... N>
  static std::array<T* (*)(), sizeof...(N)> functions(std::index_sequence<N...>) {
    return {&call<N>...};
  }

  static void* bind(std::function<T*()> body) {
    if (used == kCreators) throw std::length_error("no creator function is left");
    bodies[used] = std::move(body);
    return reinterpret_cast<void*>(functions(std::make_index_sequence<kCreators>())[used++]);
  }

  static void clear() {
    bodies.fill([]() -> T* { throw std::logic_error("a creator function that nobody bound"); });
    used = 0;
  }
};

}  // namespace

void* Creators::service(std::function<Service*()> body) {
  return Pool<Service>::bind(std::move(body));
}

void* Creators::proxy(std::function<Proxy*()> body) { return Pool<Proxy>::bind(std::move(body)); }

void* Creators::invoker(std::function<Invoker*()> body) {
  return Pool<Invoker>::bind(std::move(body));
}

void Creators::clear() {
  Pool<Service>::clear();
  Pool<Proxy>::clear();
  Pool<Invoker>::clear();
}

}  // namespace zerva::fakes
