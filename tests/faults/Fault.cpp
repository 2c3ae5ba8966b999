#include "tests/faults/Fault.h"

#include <dlfcn.h>
#include <execinfo.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <string_view>
#include <utility>

namespace zerva::fault {

namespace {

constexpr auto kNames =
    std::to_array<std::pair<const char*, Kind>>({{"new", Kind::New},
                                                 {"malloc", Kind::Malloc},
                                                 {"dlopen", Kind::DlOpen},
                                                 {"dlsym", Kind::DlSym},
                                                 {"thread", Kind::Thread},
                                                 {"socket", Kind::Socket},
                                                 {"bind", Kind::Bind},
                                                 {"listen", Kind::Listen},
                                                 {"connect", Kind::Connect},
                                                 {"accept", Kind::Accept},
                                                 {"send", Kind::Send},
                                                 {"sendpart", Kind::SendPart},
                                                 {"sendfull", Kind::SendFull},
                                                 {"receive", Kind::Receive},
                                                 {"spawn", Kind::Spawn},
                                                 {"openfile", Kind::OpenFile},
                                                 {"readfile", Kind::ReadFile},
                                                 {"openbusfile", Kind::OpenBusFile},
                                                 {"busfilefull", Kind::BusFileFull},
                                                 {"busfilequota", Kind::BusFileQuota},
                                                 {"busfiledenied", Kind::BusFileDenied},
                                                 {"descriptor", Kind::Descriptor},
                                                 {"diskfull", Kind::DiskFull},
                                                 {"death", Kind::Death},
                                                 {"clock", Kind::Clock},
                                                 {"proxy", Kind::Proxy}});

// Read by every thread in every call that can fail, the first of them before main.
std::atomic<Kind> chosen{Kind::None};
std::atomic<long> failing{0};
std::atomic<long> counted{0};
std::atomic<bool> counting{false};

/** Written at once: the program may end in any way. */
void tell() {
  constexpr std::string_view kText = "the fault comes now\n";
  static_cast<void>(!write(STDERR_FILENO, kText.data(), kText.size()));
  if (getenv("ZERVA_FAULT_STACK") == nullptr) return;
  counting = false;
  std::array<void*, 64> frames{};
  backtrace_symbols_fd(frames.data(), backtrace(frames.data(), frames.size()), STDERR_FILENO);
}

/** Calls by which a life goes on; there is one only of those that several kinds share. */
bool isAStep(Kind kind) {
  switch (kind) {
    case Kind::None:
    case Kind::New:
    case Kind::Malloc:
    case Kind::SendPart:
    case Kind::SendFull:
    case Kind::BusFileFull:
    case Kind::BusFileQuota:
    case Kind::BusFileDenied:
    case Kind::DiskFull:
    case Kind::Proxy:
    case Kind::Clock:
      return false;
    default:
      return true;
  }
}

}  // namespace

Kind kindOf(const std::string& name) {
  for (const auto& [known, kind] : kNames) {
    if (name == known) return kind;
  }
  return Kind::None;
}

void choose(Kind kind, long nth) {
  chosen = kind;
  failing = nth;
}

void count(bool on) { counting = on; }

bool hits(Kind kind) {
  const Kind wanted = chosen.load(std::memory_order_relaxed);
  const bool counts = kind == wanted || (wanted == Kind::Death && isAStep(kind));
  if (!counts || !counting.load(std::memory_order_relaxed) ||
      counted.fetch_add(1, std::memory_order_relaxed) + 1 != failing) {
    return false;
  }
  tell();
  if (wanted == Kind::Death) kill(getpid(), SIGKILL);
  return true;
}

bool hitsFrom(Kind kind) {
  if (hits(kind)) return true;
  return isChosen(kind) && failing > 0 && counted > failing;
}

bool isChosen(Kind kind) { return chosen == kind; }

long calls() { return counted; }

void* systems(const char* name) {
  // dlsym itself is among those that the program has of its own.
  using Find = void* (*)(void*, const char*);
  static const auto find = reinterpret_cast<Find>(dlvsym(RTLD_NEXT, "dlsym", "GLIBC_2.34"));
  return find(RTLD_NEXT, name);
}

}  // namespace zerva::fault
