#include "host/check/LoaderDirectories.h"

#include <elf.h>
#include <glob.h>

#include <set>
#include <sstream>

#include "host/check/ElfImage.h"
#include "host/check/FileBytes.h"
#include "host/check/RootedPath.h"

namespace zerva {
namespace {

/** What Debian calls the directories of this kind of machine; empty when it has no name for it. */
std::string multiarchName(const ElfKind& kind) {
  switch (kind.machine) {
    case EM_386:
      return "i386-linux-gnu";
    case EM_X86_64:
      return kind.bits == 64 ? "x86_64-linux-gnu" : "x86_64-linux-gnux32";
    case EM_ARM:
      return "arm-linux-gnueabihf";
    case EM_AARCH64:
      return "aarch64-linux-gnu";
    case EM_RISCV:
      return "riscv64-linux-gnu";
    default:
      return {};
  }
}

std::vector<std::string> filesMatching(const std::string& pattern) {
  std::vector<std::string> found;
  glob_t matches{};
  if (glob(pattern.c_str(), 0, nullptr, &matches) == 0) {
    for (std::size_t at = 0; at < matches.gl_pathc; ++at) found.emplace_back(matches.gl_pathv[at]);
  }
  globfree(&matches);
  return found;
}

/** Reads a file and those that it includes, each once. */
void readConfiguration(const std::string& root, const std::string& path,
                       std::set<std::string>& read, std::vector<std::string>& directories) {
  if (!read.insert(path).second) return;
  std::istringstream file(bytesOf(rootedPath(root, path)).value_or(""));
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line.substr(0, line.find('#')));
    std::string word;
    if (!(words >> word)) continue;
    if (word != "include") {
      directories.push_back(word);
      continue;
    }
    while (words >> word) {
      for (const std::string& found : filesMatching(root + word)) {
        readConfiguration(root, found.substr(root.size()), read, directories);
      }
    }
  }
}

}  // namespace

std::multimap<std::string, std::string> readLoaderCache(const std::string& bytes) {
  constexpr char magic[] = "glibc-ld.so.cache1.1";
  constexpr std::size_t headLength = 48;
  constexpr std::size_t entryLength = 24;
  // An older table may stand before the one that is read today.
  const std::size_t begin = bytes.find(magic);
  std::multimap<std::string, std::string> entries;
  if (begin == std::string::npos) return entries;
  const ElfImage image(bytes, false, ownElfKind().bigEndian);
  try {
    const std::uint64_t count = image.quad(begin + sizeof magic - 1);
    for (std::uint64_t index = 0; index < count; ++index) {
      const std::uint64_t at = begin + headLength + index * entryLength;
      entries.emplace(image.text(begin + image.quad(at + 4), bytes.size()),
                      image.text(begin + image.quad(at + 8), bytes.size()));
    }
  } catch (const BrokenElf&) {
    // What came before the broken place is as good as it was.
    return entries;
  }
  return entries;
}

LoaderPlaces readLoaderPlaces(const std::string& root, const ElfKind& kind) {
  LoaderPlaces places;
  places.cached = readLoaderCache(bytesOf(rootedPath(root, "/etc/ld.so.cache")).value_or(""));
  if (places.cached.empty()) {
    std::set<std::string> read;
    readConfiguration(root, "/etc/ld.so.conf", read, places.directories);
  }
  const std::string name = multiarchName(kind);
  for (const char* directory : {"/lib", "/usr/lib"}) {
    if (!name.empty()) places.directories.push_back(std::string(directory) + "/" + name);
  }
  for (const char* directory : {"/lib", "/usr/lib"}) {
    if (kind.bits == 64) places.directories.push_back(std::string(directory) + "64");
    places.directories.emplace_back(directory);
  }
  return places;
}

}  // namespace zerva
