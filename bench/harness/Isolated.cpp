#include "bench/harness/Isolated.h"

#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>

namespace zerva::bench {

namespace {

/** The first byte of what a process hands back. */
enum class Kind : char { Figures = 'f', Error = 'e' };

void writeAll(int descriptor, const void* data, std::size_t size) {
  const char* from = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t written = ::write(descriptor, from, size);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) _exit(3);
    from += written;
    size -= static_cast<std::size_t>(written);
  }
}

std::string readAll(int descriptor) {
  std::string all;
  char buffer[4096];
  for (;;) {
    const ssize_t got = ::read(descriptor, buffer, sizeof buffer);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return all;
    all.append(buffer, static_cast<std::size_t>(got));
  }
}

[[noreturn]] void runAndLeave(int descriptor, int processors,
                              const std::function<Figures()>& measure) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  ::alarm(kLongestSeconds);
  std::string text;
  try {
    pinTo(processors);
    const Figures figures = measure();
    text = static_cast<char>(Kind::Figures);
    text.append(reinterpret_cast<const char*>(figures.data()), figures.size() * sizeof(double));
  } catch (const std::exception& error) {
    text = static_cast<char>(Kind::Error) + std::string(error.what());
  }
  std::fflush(nullptr);
  writeAll(descriptor, text.data(), text.size());
  // What the measurement left, threads too, goes with the process.
  _exit(0);
}

Figures figuresOf(const std::string& text, int status) {
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0 || text.empty()) {
    throw std::runtime_error("the process of a measurement ended with status " +
                             std::to_string(status));
  }
  if (text[0] == static_cast<char>(Kind::Error)) throw std::runtime_error(text.substr(1));
  Figures figures((text.size() - 1) / sizeof(double));
  text.copy(reinterpret_cast<char*>(figures.data()), figures.size() * sizeof(double), 1);
  return figures;
}

}  // namespace

int processorsHere() {
  cpu_set_t allowed;
  CPU_ZERO(&allowed);
  return ::sched_getaffinity(0, sizeof allowed, &allowed) == 0 ? CPU_COUNT(&allowed) : 1;
}

void pinTo(int processors) {
  cpu_set_t allowed;
  CPU_ZERO(&allowed);
  if (::sched_getaffinity(0, sizeof allowed, &allowed) != 0) return;
  // The last ones: the first has the machine's interrupts.
  cpu_set_t chosen;
  CPU_ZERO(&chosen);
  for (int cpu = CPU_SETSIZE - 1; cpu >= 0 && processors > 0; --cpu) {
    if (!CPU_ISSET(cpu, &allowed)) continue;
    CPU_SET(cpu, &chosen);
    --processors;
  }
  if (::sched_setaffinity(0, sizeof chosen, &chosen) != 0) {
    throw std::runtime_error("the process cannot be pinned");
  }
}

Figures measureApart(int processors, const std::function<Figures()>& measure) {
  int ends[2];
  if (::pipe(ends) != 0) throw std::runtime_error("no pipe can be made");
  std::fflush(nullptr);
  const pid_t process = ::fork();
  if (process < 0) throw std::runtime_error("no process can be made");
  if (process == 0) {
    ::close(ends[0]);
    runAndLeave(ends[1], processors, measure);
  }
  ::close(ends[1]);
  const std::string text = readAll(ends[0]);
  ::close(ends[0]);
  int status = 0;
  while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  return figuresOf(text, status);
}

}  // namespace zerva::bench
