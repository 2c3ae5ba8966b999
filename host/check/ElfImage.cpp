#include "host/check/ElfImage.h"

#include <algorithm>

namespace zerva {
namespace {

/** Longer names than any compiler makes; so a small file cannot stand for much text. */
constexpr std::uint64_t longestName = 32768;

}  // namespace

ElfImage::ElfImage(const std::string& bytes, bool is64, bool bigEndian)
    : bytes_(bytes), is64_(is64), bigEndian_(bigEndian) {}

std::uint64_t ElfImage::number(std::uint64_t at, std::size_t width) const {
  if (at > bytes_.size() || bytes_.size() - at < width) throw BrokenElf("it ends too early");
  std::uint64_t value = 0;
  for (std::size_t index = 0; index < width; ++index) {
    const std::size_t from =
        static_cast<std::size_t>(at) + (bigEndian_ ? index : width - 1 - index);
    value = value << 8U | static_cast<unsigned char>(bytes_[from]);
  }
  return value;
}

std::string ElfImage::text(std::uint64_t at, std::uint64_t end) const {
  end = std::min<std::uint64_t>(end, bytes_.size());
  if (at >= end) throw BrokenElf("a name is outside of its table");
  const std::uint64_t longest = std::min(end - at, longestName);
  const std::size_t begin = static_cast<std::size_t>(at);
  const std::size_t stop = bytes_.find('\0', begin);
  if (stop == std::string::npos || stop - begin >= longest) throw BrokenElf("a name has no end");
  return bytes_.substr(begin, stop - begin);
}

}  // namespace zerva
