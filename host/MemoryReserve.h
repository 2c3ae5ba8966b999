#pragma once

namespace zerva {

/**
 * Memory that is kept for the way down. Taking things down in order needs some, in destructors too,
 * where an allocation that fails would end the process in the middle.
 *
 * One for a process.
 */
class MemoryReserve {
 public:
  /** Puts the room for it by. @throws std::bad_alloc when there is none. */
  MemoryReserve();
  /** Gives back what was not needed. */
  ~MemoryReserve();
  MemoryReserve(const MemoryReserve&) = delete;
  MemoryReserve& operator=(const MemoryReserve&) = delete;

  /**
   * From here on an allocation that would fail is tried again with a part of the reserve, on
   * whatever thread. May be repeated. Any thread.
   */
  void open();
};

/** Opens the reserve where a scope ends, however it ends. */
class ReserveForTheWayDown {
 public:
  explicit ReserveForTheWayDown(MemoryReserve& reserve) : reserve_(reserve) {}
  ~ReserveForTheWayDown() { reserve_.open(); }
  ReserveForTheWayDown(const ReserveForTheWayDown&) = delete;
  ReserveForTheWayDown& operator=(const ReserveForTheWayDown&) = delete;

 private:
  MemoryReserve& reserve_;
};

}  // namespace zerva
