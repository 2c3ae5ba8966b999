// A program that does not let itself be told to end.

#include <unistd.h>

#include <csignal>
#include <cstdio>

int main() {
  std::signal(SIGTERM, SIG_IGN);
  std::puts("stubborn: at work");
  std::fflush(stdout);
  for (;;) pause();
}
