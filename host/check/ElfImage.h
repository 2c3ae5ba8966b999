#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace zerva {

/** An ELF file that contradicts itself. */
class BrokenElf : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/** The bytes of an ELF file, read by its own word size and byte order, never beyond its end. */
class ElfImage {
 public:
  /** @param bytes outlives this. */
  ElfImage(const std::string& bytes, bool is64, bool bigEndian);

  bool is64() const { return is64_; }
  std::size_t size() const { return bytes_.size(); }

  /**
   * @param at where the number begins.
   * @param width its bytes, at most 8.
   * @throws BrokenElf when it is not all in the file; so do the others.
   */
  std::uint64_t number(std::uint64_t at, std::size_t width) const;

  std::uint64_t byte(std::uint64_t at) const { return number(at, 1); }
  std::uint64_t half(std::uint64_t at) const { return number(at, 2); }
  std::uint64_t quad(std::uint64_t at) const { return number(at, 4); }
  /** A number of the file's word size. */
  std::uint64_t word(std::uint64_t at) const { return number(at, is64_ ? 8 : 4); }

  /** @returns the characters from there to a zero, which comes before the end. */
  std::string text(std::uint64_t at, std::uint64_t end) const;

 private:
  const std::string& bytes_;
  const bool is64_;
  const bool bigEndian_;
};

}  // namespace zerva
