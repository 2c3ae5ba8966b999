#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>

#include "framework/Export.h"

namespace zerva {

/**
 * Keeps the memory of long messages for the next ones, since to get such pieces from the system
 * takes longer than to fill them. Any thread.
 */
class ZERVA_EXPORT SpareText {
 public:
  /** Most bytes that are kept. */
  static constexpr std::size_t kMost = std::size_t{256} * 1024;

  /** Most bytes of one that is kept. */
  static constexpr std::size_t kLongest = std::size_t{128} * 1024;

  /**
   * @param spare what the text's memory comes from if possible, and where it goes when nobody has
   *     the text any more.
   * @param size of the text, whose bytes may be any.
   */
  static std::shared_ptr<std::string> make(const std::shared_ptr<SpareText>& spare,
                                           std::size_t size);

  /** @returns how many bytes are kept. */
  std::size_t kept() const;

 private:
  std::string take(std::size_t size);
  void giveBack(std::string& text) noexcept;
  std::size_t keptLocked() const;

  mutable std::mutex mutex_;
  std::array<std::string, 4> kept_;  // guarded by mutex_
};

}  // namespace zerva
