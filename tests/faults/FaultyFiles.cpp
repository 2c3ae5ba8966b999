// The directive file and the files of the bus, whose opening and reading can fail.

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <string_view>
#include <utility>

#include "tests/faults/FaultyCalls.h"

namespace {

using zerva::fault::callOr;
using zerva::fault::hits;
using zerva::fault::Kind;
using zerva::fault::systems;

// That of the directive file while it is open. Its number may be another file's later, which then
// is read with the same fault; there is one thread in the start that reads.
std::atomic<int> directives{-1};

FILE* openFile(const char* name, const char* path, const char* mode) {
  const bool wanted = std::string_view(path).ends_with(".directives");
  if (wanted && hits(Kind::OpenFile)) {
    errno = EMFILE;
    return nullptr;
  }
  FILE* const file =
      reinterpret_cast<FILE* (*)(const char*, const char*)>(systems(name))(path, mode);
  if (wanted && file != nullptr) directives = fileno(file);
  return file;
}

/** Opens a file of the bus, unless it is the call that fails, of whichever kind. */
int openBusFile(const char* function, int directory, const char* name, int flags, mode_t mode) {
  constexpr std::array<std::pair<Kind, int>, 3> kErrors{
      {{Kind::BusFileFull, ENOSPC}, {Kind::BusFileQuota, EDQUOT}, {Kind::BusFileDenied, EACCES}}};
  for (const auto& [kind, error] : kErrors) {
    if (!hits(kind)) continue;
    errno = error;
    return -1;
  }
  return callOr<int>(Kind::OpenBusFile, EMFILE, function, directory, name, flags, mode);
}

bool isOnDisk(int descriptor) {
  struct stat status {};
  return descriptor > STDERR_FILENO && fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

extern "C" {

FILE* faultyOpen(const char* path, const char* mode) ZERVA_FAULTY("fopen");
FILE* faultyOpen64(const char* path, const char* mode) ZERVA_FAULTY("fopen64");
ssize_t faultyRead(int descriptor, void* to, std::size_t size) ZERVA_FAULTY("read");
ssize_t faultyWrite(int descriptor, const void* from, std::size_t size) ZERVA_FAULTY("write");
int faultyOpenAt(int directory, const char* name, int flags, mode_t mode) ZERVA_FAULTY("openat");
int faultyOpenAt64(int directory, const char* name, int flags, mode_t mode)
    ZERVA_FAULTY("openat64");

FILE* faultyOpen(const char* path, const char* mode) { return openFile("fopen", path, mode); }

FILE* faultyOpen64(const char* path, const char* mode) { return openFile("fopen64", path, mode); }

ssize_t faultyRead(int descriptor, void* to, std::size_t size) {
  if (descriptor == directives && hits(Kind::ReadFile)) {
    errno = EIO;
    return -1;
  }
  return reinterpret_cast<ssize_t (*)(int, void*, std::size_t)>(systems("read"))(descriptor, to,
                                                                                 size);
}

ssize_t faultyWrite(int descriptor, const void* from, std::size_t size) {
  if (isOnDisk(descriptor) && zerva::fault::hitsFrom(Kind::DiskFull)) {
    errno = ENOSPC;
    return -1;
  }
  return reinterpret_cast<ssize_t (*)(int, const void*, std::size_t)>(systems("write"))(descriptor,
                                                                                        from, size);
}

int faultyOpenAt(int directory, const char* name, int flags, mode_t mode) {
  return openBusFile("openat", directory, name, flags, mode);
}

int faultyOpenAt64(int directory, const char* name, int flags, mode_t mode) {
  return openBusFile("openat64", directory, name, flags, mode);
}
}
