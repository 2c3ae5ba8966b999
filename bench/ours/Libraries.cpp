#include "bench/ours/Libraries.h"

#include <unistd.h>

#include <cstdio>
#include <filesystem>

namespace zerva::bench {

namespace {

namespace fs = std::filesystem;

bool isOlder(const fs::path& file, const fs::path& than) {
  std::error_code error;
  const auto time = fs::last_write_time(file, error);
  return error || time < fs::last_write_time(than);
}

}  // namespace

std::string buildDirectory() {
  return fs::read_symlink("/proc/self/exe").parent_path().parent_path();
}

std::string copiesDirectory() { return buildDirectory() + "/bench/copies"; }

std::string copyName(int number) {
  char name[32];
  std::snprintf(name, sizeof name, "libEcho%05d.so", number);
  return name;
}

void makeCopies(int count) {
  const fs::path original = buildDirectory() + "/plugins/libEcho.so";
  const fs::path directory = copiesDirectory();
  fs::create_directories(directory);
  // Another run may be at it too, and must never open one that is written half.
  const fs::path half = directory / ("half" + std::to_string(::getpid()));
  for (int i = 0; i < count; ++i) {
    const fs::path copy = directory / copyName(i);
    if (!isOlder(copy, original)) continue;
    fs::copy_file(original, half, fs::copy_options::overwrite_existing);
    fs::rename(half, copy);
  }
}

}  // namespace zerva::bench
