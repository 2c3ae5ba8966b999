// Writes to the file named first what it finds itself with, one thing a line, then does what the
// second argument says: "exit N", "hang", "hang-on" (SIGTERM notwithstanding), "leave CHILD-FILE"
// (hangs, and so does a child of its own).

#include <dirent.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

extern char** environ;

namespace {

void reportSignals(FILE* report) {
  sigset_t blocked;
  sigprocmask(SIG_BLOCK, nullptr, &blocked);
  for (int number = 1; number < 32; ++number) {
    // The sanitizers set these for themselves.
    if (number == SIGSEGV || number == SIGBUS || number == SIGFPE || number == SIGILL) continue;
    if (sigismember(&blocked, number) == 1) std::fprintf(report, "blocked %d\n", number);
    struct sigaction action {};
    sigaction(number, nullptr, &action);
    if (action.sa_handler != SIG_DFL) std::fprintf(report, "disposition %d\n", number);
  }
}

void reportDescriptors(FILE* report) {
  DIR* const directory = opendir("/proc/self/fd");
  while (const dirent* entry = readdir(directory)) {
    const int descriptor = std::atoi(entry->d_name);
    if (entry->d_name[0] == '.' || descriptor == dirfd(directory) || descriptor == fileno(report)) {
      continue;
    }
    std::fprintf(report, "descriptor %d\n", descriptor);
  }
  closedir(directory);
}

void report(const char* path, int argc, char** argv) {
  const std::string unfinished = std::string(path) + ".unfinished";
  FILE* const file = std::fopen(unfinished.c_str(), "w");
  std::fprintf(file, "group %s\n", getpgrp() == getpid() ? "own" : "other");
  char directory[4096];
  std::fprintf(file, "directory %s\n", getcwd(directory, sizeof directory));
  for (int i = 0; i < argc; ++i) std::fprintf(file, "argument %s\n", argv[i]);
  for (char** one = environ; *one != nullptr; ++one) std::fprintf(file, "environment %s\n", *one);
  reportSignals(file);
  reportDescriptors(file);
  std::fprintf(file, "process %d\n", static_cast<int>(getpid()));
  std::fclose(file);
  std::rename(unfinished.c_str(), path);
}

[[noreturn]] void hang() {
  for (;;) pause();
}

}  // namespace

int main(int argc, char** argv) {
  const std::string what = argc > 2 ? argv[2] : "exit";
  if (what == "hang-on") ::signal(SIGTERM, SIG_IGN);
  if (what == "leave" && fork() == 0) {
    report(argv[3], argc, argv);
    hang();
  }
  if (argc > 1) report(argv[1], argc, argv);
  if (what != "exit") hang();
  return argc > 3 ? std::atoi(argv[3]) : 0;
}
