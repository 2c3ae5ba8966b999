#pragma once

#include <atomic>
#include <cstddef>
#include <mutex>

#include "framework/Export.h"

namespace zerva {

/** What is written over the beginning of an object that is kept. */
struct Spare {
  Spare* next = nullptr;
  // Of the first one of a row that lies in the store.
  Spare* nextRow = nullptr;
  std::size_t inRow = 0;
};

/** What is kept; there is one `Spares` for each. The last one is nobody's. */
enum class SpareKind : unsigned char { Text, QueuePlace, Message, Unused };

/**
 * Objects of one kind that are kept instead of being freed. What a message is made of one thread
 * gets and another one gives back, for which the allocator has no short way.
 *
 * Each thread has a row of its own, for which it takes no lock. When that is full it goes to the
 * store of the process, and a thread that has none takes a row from there. What the store has no
 * room for is freed. A thread that goes to sleep since it has nothing to do keeps a few only, and
 * one that ends keeps nothing.
 *
 * Nothing here throws, nor takes memory but for what the C library notes of a thread. Any thread,
 * also while the process ends.
 */
class ZERVA_EXPORT Spares {
 public:
  /**
   * Most of a kind that are in the store: what is sent on a processor in the time that the system
   * gives a thread, before the one that serves it has its turn.
   */
  static constexpr std::size_t kMostInStore = 16384;

  /** Most in a row. A thread that is busy has two rows at most. */
  static constexpr std::size_t kMostInRow = 32;

  /** Most of a kind that a thread keeps that has nothing to do. */
  static constexpr std::size_t kMostOfIdle = 8;

  /**
   * It lives as long as the process.
   *
   * @param free frees one that is too many, the beginning of which was written over.
   */
  constexpr Spares(SpareKind kind, void (*free)(void*)) : kind_(kind), free_(free) {}
  Spares(const Spares&) = delete;
  Spares& operator=(const Spares&) = delete;

  /** @returns one that was given, perhaps by another thread; null when there is none. */
  void* take();

  /** @param object begins with as much as a `Spare` takes that nobody needs any more. */
  void give(void* object);

  /** The calling thread is about to sleep since it has nothing to do. */
  static void idle();

 private:
  struct Kept;
  class ThreadEnd;

  static Kept& keptByThisThread(SpareKind kind);
  static bool noteThread();
  static void threadEnds();
  bool takeRow(Kept& kept);
  bool makeRoom(Kept& kept);
  void store(Spare* first, std::size_t count);

  const SpareKind kind_;
  void (*const free_)(void*);

  std::mutex mutex_;
  Spare* stored_ = nullptr;             // guarded by mutex_: the rows
  std::atomic<std::size_t> count_ = 0;  // written under mutex_, read without
};

}  // namespace zerva
