#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "framework/Export.h"

namespace zerva {

/** Who called what. */
struct CallKey {
  /** For which service; empty for nobody in particular. */
  std::string_view service;
  std::string_view channel;
  std::string_view interface;
  std::string_view method;

  bool operator==(const CallKey&) const = default;
};

/** How the calls of a key went. */
struct CallFigures {
  std::uint64_t count = 0;
  std::uint64_t failures = 0;
  /** Nanoseconds. */
  std::int64_t total = 0;
  /** By the last nanosecond that counts as the same duration; those that there are. */
  std::map<std::int64_t, std::uint64_t> times;
};

/**
 * Counts the calls of a process, however many they are, in a room that does not depend on how many.
 * Any thread may call any operation.
 */
class ZERVA_EXPORT CallTally {
 public:
  using Visit = std::function<void(const CallKey&, const CallFigures&)>;

  /** The threads are spread over so many shares. */
  static constexpr std::size_t kShares = 8;

  /** @param most how many different calls are told apart for each eighth of the threads. */
  explicit CallTally(std::size_t most = 1024) : largestShare_(most) {}

  /**
   * Counts a call.
   *
   * @returns false when there are too many different ones already, or no memory for another one.
   */
  bool add(unsigned which, const CallKey& key, std::int64_t duration, bool failed) noexcept;

  /** Forgets everything. */
  void clear() noexcept;

  /**
   * Hands over what changed since the last time, each with all that was counted so far. What is
   * handed over lives during the call. After an exception only `changeAll` tells again what was to
   * be handed over.
   */
  void visitChanged(const Visit& visit);

  /** Hands over everything that was counted so far; it changes nothing. */
  void visitAll(const Visit& visit) const;

  /** Takes everything for changed. */
  void changeAll() noexcept;

 private:
  // Four steps for each doubling of the duration, up to 2^41 ns; longer is in the last one.
  static constexpr std::size_t kSteps = 160;

  struct Counts {
    std::shared_ptr<const std::string> names;  // those of the key, one after the other
    std::array<std::uint64_t, kSteps> times{};
    std::uint64_t count = 0;
    std::uint64_t failures = 0;
    std::int64_t total = 0;
    bool changed = true;
  };

  struct Hash {
    std::size_t operator()(const CallKey& key) const;
  };

  // The keys are views of the names of the counts, which stay where they are.
  using Share = std::unordered_map<CallKey, std::unique_ptr<Counts>, Hash>;

  struct alignas(64) Guarded {
    mutable std::mutex mutex;
    Share share;  // guarded by mutex
  };

  /** What is left to look at without the lock; the key's names are those of the counts. */
  struct Copied {
    CallKey key;
    Counts counts;
  };

  static std::size_t stepOf(std::int64_t duration);
  static std::int64_t lastOf(std::size_t step);
  Counts* findOrMake(Share& share, const CallKey& key) const;
  std::vector<Copied> copyOf(const Guarded& guarded, bool told) const;
  static void addUp(const Counts& counts, CallFigures& figures);

  const std::size_t largestShare_;
  std::array<Guarded, kShares> shares_;
};

}  // namespace zerva
