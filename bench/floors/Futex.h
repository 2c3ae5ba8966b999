#pragma once

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <climits>
#include <cstdint>

namespace zerva::bench {

using Word = std::atomic<std::uint32_t>;
static_assert(sizeof(Word) == sizeof(std::uint32_t));

/** Sleeps until the word is woken, unless it has another value already. May return for nothing. */
inline void sleepWhile(Word& word, std::uint32_t value) {
  ::syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, value, nullptr, nullptr, 0);
}

inline void wake(Word& word, int threads) {
  ::syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, threads, nullptr, nullptr, 0);
}

inline void wakeOne(Word& word) { wake(word, 1); }

inline void wakeAll(Word& word) { wake(word, INT_MAX); }

}  // namespace zerva::bench
