#include <elf.h>

#include <array>
#include <fstream>

#include "host/check/ElfFile.h"

namespace zerva {
namespace {

struct NamedKind {
  const char* name;
  ElfKind kind;
};

constexpr std::array<NamedKind, 8> kinds = {{
    {"i386", {32, false, EM_386}},
    {"x86_64", {64, false, EM_X86_64}},
    {"arm", {32, false, EM_ARM}},
    {"aarch64", {64, false, EM_AARCH64}},
    {"riscv64", {64, false, EM_RISCV}},
    {"ppc64le", {64, false, EM_PPC64}},
    {"ppc", {32, true, EM_PPC}},
    {"mipsel", {32, false, EM_MIPS}},
}};

std::string machineName(unsigned machine) {
  switch (machine) {
    case EM_386:
    case EM_X86_64:
      return "x86";
    case EM_ARM:
    case EM_AARCH64:
      return "ARM";
    case EM_RISCV:
      return "RISC-V";
    case EM_PPC:
    case EM_PPC64:
      return "PowerPC";
    case EM_MIPS:
      return "MIPS";
    default:
      return "machine " + std::to_string(machine);
  }
}

}  // namespace

std::string describe(const ElfKind& kind) {
  // The one machine whose 32-bit form is not what everybody takes it for.
  const bool x32 = kind.machine == EM_X86_64 && kind.bits == 32;
  return std::to_string(kind.bits) + "-bit " + machineName(kind.machine) + (x32 ? " (x32)" : "") +
         (kind.bigEndian ? ", big-endian" : "");
}

std::optional<ElfKind> elfKindNamed(const std::string& name) {
  for (const NamedKind& known : kinds) {
    if (name == known.name) return known.kind;
  }
  return std::nullopt;
}

std::vector<std::string> elfKindNames() {
  std::vector<std::string> names;
  for (const NamedKind& known : kinds) names.emplace_back(known.name);
  return names;
}

ElfKind ownElfKind() {
  std::ifstream file("/proc/self/exe", std::ios::binary);
  std::string bytes(sizeof(Elf64_Ehdr), '\0');
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  ElfKind kind;
  kind.bits = bytes[EI_CLASS] == ELFCLASS64 ? 64 : 32;
  kind.bigEndian = bytes[EI_DATA] == ELFDATA2MSB;
  const std::size_t machine = offsetof(Elf32_Ehdr, e_machine);
  const auto low = static_cast<unsigned char>(bytes[machine + (kind.bigEndian ? 1 : 0)]);
  const auto high = static_cast<unsigned char>(bytes[machine + (kind.bigEndian ? 0 : 1)]);
  kind.machine = static_cast<unsigned>(low | high << 8U);
  return kind;
}

}  // namespace zerva
