#include "runtime/libClientUtils/protocols/SimpleRmiWriter.h"

#include <array>
#include <cstring>
#include <limits>
#include <msgpack.hpp>
#include <stdexcept>

namespace zerva {
namespace {

/** What the packer writes to. */
struct Sink {
  std::string& bytes;
  void write(const char* data, std::size_t size) { bytes.append(data, size); }
};

std::uint32_t checkedSize(std::size_t size) {
  if (size > std::numeric_limits<std::uint32_t>::max()) {
    throw std::length_error("a value is too large for the protocol");
  }
  return static_cast<std::uint32_t>(size);
}

/** Writes one value by an operation of the packer, which keeps no state of its own. */
template <typename Write>
void pack(std::string& bytes, const Write& write) {
  Sink sink{bytes};
  msgpack::packer<Sink> packer(sink);
  write(packer);
}

}  // namespace

void SimpleRmiWriter::writeNothing() {
  pack(bytes_, [](auto& packer) { packer.pack_nil(); });
}

void SimpleRmiWriter::writeBool(bool value) {
  pack(bytes_, [value](auto& packer) { value ? packer.pack_true() : packer.pack_false(); });
}

void SimpleRmiWriter::writeInteger(std::int64_t value) {
  pack(bytes_, [value](auto& packer) { packer.pack_int64(value); });
}

void SimpleRmiWriter::writeUnsigned(std::uint64_t value) {
  pack(bytes_, [value](auto& packer) { packer.pack_uint64(value); });
}

void SimpleRmiWriter::writeReal(double value) {
  // The packer would write whole numbers as integers, and lose the sign of a zero.
  bytes_ += '\xcb';
  std::array<char, sizeof(value)> inOrder{};
  std::memcpy(inOrder.data(), &value, sizeof(value));
  bytes_.append(inOrder.rbegin(), inOrder.rend());  // highest byte first; x86 has the lowest first
}

void SimpleRmiWriter::writeText(const std::string& value) {
  pack(bytes_, [&value, size = checkedSize(value.size())](auto& packer) {
    packer.pack_str(size);
    packer.pack_str_body(value.data(), size);
  });
}

void SimpleRmiWriter::beginList(std::size_t size) {
  pack(bytes_, [size = checkedSize(size)](auto& packer) { packer.pack_array(size); });
}

}  // namespace zerva
