// A program for a `start_process` line: works until it is told to end, as every started program
// should. The last argument that it gets is the version of the framework.

#include <csignal>
#include <cstdio>

int main(int argc, char** argv) {
  sigset_t ending;
  sigemptyset(&ending);
  sigaddset(&ending, SIGTERM);
  sigaddset(&ending, SIGINT);
  sigprocmask(SIG_BLOCK, &ending, nullptr);

  // Written at once: standard output may be a pipe that others write to as well.
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  std::printf("worker: at work, for version %s\n", argc > 1 ? argv[argc - 1] : "unknown");

  int signal = 0;
  sigwait(&ending, &signal);
  std::printf("worker: told to end, and ends\n");
  return 0;
}
