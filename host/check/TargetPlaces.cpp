#include "host/check/TargetPlaces.h"

#include <link.h>

#include <cstdlib>
#include <filesystem>

#include "host/DefaultLibraryDirectories.h"
#include "host/check/FileBytes.h"
#include "host/check/LibraryUse.h"
#include "host/check/RootedPath.h"

namespace zerva {
namespace {

constexpr char platformLibrary[] = "libClientUtils.so";

std::string fileName(const std::string& path) {
  return std::filesystem::path(path).filename().string();
}

/** @returns the paths of everything that this process has loaded. */
std::vector<std::string> loadedPaths() {
  std::vector<std::string> paths;
  dl_iterate_phdr(
      [](dl_phdr_info* info, std::size_t, void* collected) {
        static_cast<std::vector<std::string>*>(collected)->emplace_back(info->dlpi_name);
        return 0;
      },
      &paths);
  return paths;
}

std::string environmentText(const char* name) {
  const char* text = std::getenv(name);
  return text == nullptr ? "" : text;
}

/** The host as it is here: whatever this process has loaded, a host has loaded. */
void placesHere(LibraryPlaces& places) {
  places.environment = splitPath(environmentText("LD_LIBRARY_PATH"));
  for (const std::string& path : loadedPaths()) {
    places.loaded.insert(fileName(path));
    // The program itself has no name there.
    places.hostFiles.push_back(path.empty() ? "/proc/self/exe" : path);
    if (fileName(path) != platformLibrary) continue;
    places.platformDirectory = directoryOf(path);
    const auto content = readElf(bytesOf(path).value_or(""));
    if (const auto* file = std::get_if<ElfFile>(&content)) places.platformRunpath = file->runpath;
  }
}

constexpr const char* hostPrograms[] = {"/usr/bin/zerva", "/usr/local/bin/zerva", "/bin/zerva",
                                        "/opt/zerva/bin/zerva"};

std::string hostIn(const std::string& root) {
  for (const char* program : hostPrograms) {
    if (std::filesystem::exists(rootedPath(root, program))) return program;
  }
  return {};
}

/** The host in another machine's tree. Its own libraries are where it is, beside it. */
void placesIn(const std::string& root, LibraryPlaces& places) {
  for (const std::string& path : loadedPaths()) places.loaded.insert(fileName(path));
  const std::string host = hostIn(root);
  if (host.empty()) return;
  places.platformDirectory = directoryOf(directoryOf(host)) + "/lib";
  places.platformRunpath = "$ORIGIN/../lib:$ORIGIN";
  if (places.hostDirectories.empty()) places.hostDirectories = {places.platformDirectory};
  LibraryPlaces bare = places;
  bare.loaded.clear();
  places.hostFiles = programAndLibraries(host, LibraryTree(bare));
  if (!places.hostFiles.empty()) places.loaded.clear();
  for (const std::string& path : places.hostFiles) places.loaded.insert(fileName(path));
}

std::optional<ElfKind> kindOf(const std::string& path) {
  const auto content = readElf(bytesOf(path).value_or(""));
  const auto* file = std::get_if<ElfFile>(&content);
  return file == nullptr ? std::nullopt : std::optional(file->kind);
}

ElfKind kindIn(const std::string& root) {
  std::vector<std::string> programs(std::begin(hostPrograms), std::end(hostPrograms));
  programs.insert(programs.end(), {"/bin/sh", "/sbin/init", "/lib/libc.so.6"});
  for (const std::string& program : programs) {
    if (const auto kind = kindOf(rootedPath(root, program))) return *kind;
  }
  return ownElfKind();
}

}  // namespace

LibraryPlaces targetPlaces(const CheckOptions& options) {
  LibraryPlaces places;
  places.hostDirectories = options.libraryDirectories;
  if (options.root.empty()) {
    places.kind = ownElfKind();
    if (places.hostDirectories.empty()) places.hostDirectories = defaultLibraryDirectories();
    placesHere(places);
  } else {
    places.root = std::filesystem::canonical(options.root).string();
    places.kind = kindIn(places.root);
    placesIn(places.root, places);
  }
  const ElfKind found = places.kind;
  if (!options.machine.empty()) places.kind = elfKindNamed(options.machine).value_or(found);
  // What a host for another machine has is called differently.
  if (!(places.kind == found)) places.hostFiles.clear();
  return places;
}

std::string programPath(const CheckOptions& options) {
  if (options.root.empty()) return environmentText("PATH");
  return "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";
}

}  // namespace zerva
