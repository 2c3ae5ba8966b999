#include "bench/plugin/Arrivals.h"

#include <atomic>

#include "bench/floors/Futex.h"

namespace zerva::bench {

namespace {

std::atomic<std::uint32_t> missing{0};
std::atomic<std::uint32_t> released{0};

}  // namespace

void Arrivals::expect(std::uint32_t messages) { missing += messages; }

void Arrivals::one() {
  if (--missing == 0) wakeAll(missing);
}

void Arrivals::awaitAll() {
  for (std::uint32_t left = missing; left != 0; left = missing) sleepWhile(missing, left);
}

void Arrivals::stayUntilReleased() {
  while (released == 0) sleepWhile(released, 0);
}

void Arrivals::releaseAll() {
  released = 1;
  wakeAll(released);
}

}  // namespace zerva::bench
