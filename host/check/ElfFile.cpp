#include "host/check/ElfFile.h"

#include <elf.h>

#include <algorithm>
#include <cstring>

#include "host/check/ElfImage.h"

namespace zerva {
namespace {

/** More than any file has that was meant well. */
constexpr std::uint64_t mostEntries = 100000;
constexpr std::size_t mostText = 64U << 20U;

struct Segment {
  std::uint64_t address;
  std::uint64_t offset;
  std::uint64_t size;
};

/** What the dynamic section says, in its own numbers; 0 for what it does not say. */
struct Dynamic {
  std::vector<std::uint64_t> needed;
  std::map<std::uint64_t, std::uint64_t> values;

  std::uint64_t operator[](std::uint64_t tag) const {
    const auto found = values.find(tag);
    return found == values.end() ? 0 : found->second;
  }
  bool has(std::uint64_t tag) const { return values.contains(tag); }
};

// Reads the field of a structure that the two word sizes order differently.
#define ZERVA_ELF_FIELD(image, at, structure, field)                          \
  ((image).is64() ? (image).number((at) + offsetof(Elf64_##structure, field), \
                                   sizeof(Elf64_##structure::field))          \
                  : (image).number((at) + offsetof(Elf32_##structure, field), \
                                   sizeof(Elf32_##structure::field)))

class ElfReader {
 public:
  ElfReader(const ElfImage& image, const ElfKind& kind) : image_(image) { file_.kind = kind; }

  ElfFile read() {
    file_.kind.machine = static_cast<unsigned>(ZERVA_ELF_FIELD(image_, 0, Ehdr, e_machine));
    const std::uint64_t type = ZERVA_ELF_FIELD(image_, 0, Ehdr, e_type);
    if (type != ET_DYN) return std::move(file_);
    readSegments();
    readDynamic();
    const bool isProgram = (dynamic_[DT_FLAGS_1] & DF_1_PIE) != 0;
    file_.isLibrary = !isProgram;
    readNames();
    readSymbols();
    return std::move(file_);
  }

 private:
  void readSegments() {
    const std::uint64_t begin = ZERVA_ELF_FIELD(image_, 0, Ehdr, e_phoff);
    const std::uint64_t size = ZERVA_ELF_FIELD(image_, 0, Ehdr, e_phentsize);
    const std::uint64_t count = ZERVA_ELF_FIELD(image_, 0, Ehdr, e_phnum);
    for (std::uint64_t index = 0; index < count; ++index) {
      const std::uint64_t at = begin + index * size;
      const std::uint64_t type = ZERVA_ELF_FIELD(image_, at, Phdr, p_type);
      const Segment segment{ZERVA_ELF_FIELD(image_, at, Phdr, p_vaddr),
                            ZERVA_ELF_FIELD(image_, at, Phdr, p_offset),
                            ZERVA_ELF_FIELD(image_, at, Phdr, p_filesz)};
      if (type == PT_LOAD) loaded_.push_back(segment);
      if (type == PT_DYNAMIC) section_ = segment;
      if (type != PT_LOAD && type != PT_DYNAMIC) continue;
      if (segment.offset > image_.size() || image_.size() - segment.offset < segment.size) {
        throw BrokenElf("a part of it is missing");
      }
    }
  }

  void readDynamic() {
    const std::uint64_t width = image_.is64() ? sizeof(Elf64_Dyn) : sizeof(Elf32_Dyn);
    for (std::uint64_t index = 0; index < std::min(section_.size / width, mostEntries); ++index) {
      const std::uint64_t at = section_.offset + index * width;
      const std::uint64_t tag = image_.word(at);
      const std::uint64_t value = image_.word(at + width / 2);
      if (tag == DT_NULL) break;
      if (tag == DT_NEEDED) {
        dynamic_.needed.push_back(value);
      } else {
        dynamic_.values[tag] = value;
      }
    }
    if (!dynamic_.has(DT_STRTAB) || !dynamic_.has(DT_SYMTAB)) {
      throw BrokenElf("it has no table of symbols");
    }
    strings_ = offsetOf(dynamic_[DT_STRTAB]);
    stringsEnd_ = strings_ + std::min<std::uint64_t>(dynamic_[DT_STRSZ], image_.size());
  }

  std::uint64_t offsetOf(std::uint64_t address) const {
    for (const Segment& segment : loaded_) {
      if (address >= segment.address && address - segment.address < segment.size) {
        return segment.offset + (address - segment.address);
      }
    }
    throw BrokenElf("a table is outside of it");
  }

  std::string name(std::uint64_t offset) const {
    if (offset >= stringsEnd_ - strings_) throw BrokenElf("a name is outside of its table");
    return image_.text(strings_ + offset, stringsEnd_);
  }

  void readNames() {
    for (const std::uint64_t needed : dynamic_.needed) file_.needed.push_back(name(needed));
    if (dynamic_.has(DT_SONAME)) file_.soname = name(dynamic_[DT_SONAME]);
    if (dynamic_.has(DT_RPATH)) file_.rpath = name(dynamic_[DT_RPATH]);
    file_.hasRunpath = dynamic_.has(DT_RUNPATH);
    if (file_.hasRunpath) file_.runpath = name(dynamic_[DT_RUNPATH]);
  }

  /** The table does not say where it ends, but the one by which it is searched does. */
  std::uint64_t symbolCount() const {
    if (dynamic_.has(DT_HASH)) return image_.quad(offsetOf(dynamic_[DT_HASH]) + 4);
    if (!dynamic_.has(DT_GNU_HASH)) throw BrokenElf("it has no table to find symbols by");
    const std::uint64_t table = offsetOf(dynamic_[DT_GNU_HASH]);
    const std::uint64_t buckets = image_.quad(table);
    const std::uint64_t first = image_.quad(table + 4);
    const std::uint64_t filter = image_.quad(table + 8) * (image_.is64() ? 8 : 4);
    const std::uint64_t begin = table + 16 + filter;
    std::uint64_t last = 0;
    for (std::uint64_t index = 0; index < buckets; ++index) {
      last = std::max(last, image_.quad(begin + 4 * index));
    }
    if (last < first) return first;
    const std::uint64_t chains = begin + 4 * buckets;
    while ((image_.quad(chains + 4 * (last - first)) & 1U) == 0) ++last;
    return last + 1;
  }

  void readSymbols() {
    const std::uint64_t table = offsetOf(dynamic_[DT_SYMTAB]);
    const std::uint64_t width = image_.is64() ? sizeof(Elf64_Sym) : sizeof(Elf32_Sym);
    const std::uint64_t count = symbolCount();
    std::size_t text = 0;
    for (std::uint64_t index = 1; index < count; ++index) {
      const std::uint64_t at = table + index * width;
      const std::uint64_t info = ZERVA_ELF_FIELD(image_, at, Sym, st_info);
      const std::uint64_t hiding = ZERVA_ELF_FIELD(image_, at, Sym, st_other) & 3U;
      const std::uint64_t section = ZERVA_ELF_FIELD(image_, at, Sym, st_shndx);
      const std::uint64_t binding = info >> 4U;
      const bool isHidden = hiding == STV_HIDDEN || hiding == STV_INTERNAL;
      if (binding == STB_LOCAL || isHidden) continue;
      const std::string symbol = name(ZERVA_ELF_FIELD(image_, at, Sym, st_name));
      text += symbol.size();
      if (text > mostText) throw BrokenElf("its names are longer than itself");
      const std::uint64_t kind = info & 0xFU;
      if (section != SHN_UNDEF) {
        file_.exported[symbol] = kind == STT_FUNC || kind == STT_GNU_IFUNC;
      } else if (binding != STB_WEAK) {
        file_.undefined.push_back(symbol);
      }
    }
  }

  const ElfImage& image_;
  ElfFile file_;
  std::vector<Segment> loaded_;
  Segment section_{0, 0, 0};
  Dynamic dynamic_;
  std::uint64_t strings_ = 0;
  std::uint64_t stringsEnd_ = 0;
};

#undef ZERVA_ELF_FIELD

}  // namespace

std::variant<ElfFile, ElfError> readElf(const std::string& bytes) {
  if (bytes.compare(0, SELFMAG, ELFMAG) != 0) {
    return ElfError{ElfError::Kind::NotElf, "it is no ELF file"};
  }
  try {
    if (bytes.size() < EI_NIDENT) throw BrokenElf("it ends too early");
    const int elfClass = static_cast<unsigned char>(bytes[EI_CLASS]);
    const int order = static_cast<unsigned char>(bytes[EI_DATA]);
    const bool knownClass = elfClass == ELFCLASS32 || elfClass == ELFCLASS64;
    const bool knownOrder = order == ELFDATA2LSB || order == ELFDATA2MSB;
    if (!knownClass || !knownOrder) throw BrokenElf("its head is not understood");
    const ElfImage image(bytes, elfClass == ELFCLASS64, order == ELFDATA2MSB);
    return ElfReader(image, {image.is64() ? 64 : 32, order == ELFDATA2MSB, 0}).read();
  } catch (const BrokenElf& error) {
    return ElfError{ElfError::Kind::Broken, error.what()};
  }
}

}  // namespace zerva
