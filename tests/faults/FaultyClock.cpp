// A wall clock that is put forward and back all the time. The machine's own is left alone, and so
// is the clock that only ever goes on.

#include <time.h>

#include <atomic>
#include <cstdint>

#include "tests/faults/FaultyCalls.h"

namespace {

using zerva::fault::systems;

/** @returns by how many seconds the clock is wrong at this look. */
long jump() {
  if (!zerva::fault::isChosen(zerva::fault::Kind::Clock)) return 0;
  constexpr unsigned long kDay = 86400;
  constexpr unsigned long kFactor = 7919;  // no two looks in a row are wrong in the same way
  static std::atomic<unsigned long> looks{0};
  const unsigned long look = ++looks;
  zerva::fault::hits(zerva::fault::Kind::Clock);  // counts it; it fails in its own way
  const auto seconds = static_cast<long>(look * kFactor % kDay);
  return look % 2 == 0 ? seconds : -seconds;
}

/** @param time begins with the seconds, of the size that the caller's function has. */
template <typename Seconds>
void put(void* time) {
  if (time != nullptr) *static_cast<Seconds*>(time) += jump();
}

int systemsClock(const char* name, int clock, void* time) {
  return reinterpret_cast<int (*)(int, void*)>(systems(name))(clock, time);
}

int systemsDay(const char* name, void* time, void* zone) {
  return reinterpret_cast<int (*)(void*, void*)>(systems(name))(time, zone);
}

}  // namespace

extern "C" {

int faultyClock(int clock, void* time) ZERVA_FAULTY("clock_gettime");
int faultyClock64(int clock, void* time) ZERVA_FAULTY("__clock_gettime64");
int faultyDay(void* time, void* zone) ZERVA_FAULTY("gettimeofday");
int faultyDay64(void* time, void* zone) ZERVA_FAULTY("__gettimeofday64");

int faultyClock(int clock, void* time) {
  const int result = systemsClock("clock_gettime", clock, time);
  if (clock == CLOCK_REALTIME) put<long>(time);
  return result;
}

int faultyClock64(int clock, void* time) {
  const int result = systemsClock("__clock_gettime64", clock, time);
  if (clock == CLOCK_REALTIME) put<std::int64_t>(time);
  return result;
}

int faultyDay(void* time, void* zone) {
  const int result = systemsDay("gettimeofday", time, zone);
  put<long>(time);
  return result;
}

int faultyDay64(void* time, void* zone) {
  const int result = systemsDay("__gettimeofday64", time, zone);
  put<std::int64_t>(time);
  return result;
}
}
