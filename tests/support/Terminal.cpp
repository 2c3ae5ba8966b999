#include "tests/support/Terminal.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>

#include "tests/support/ChildProcess.h"

namespace zerva {

Shown runOnATerminal(const std::string& command) {
  const int master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) {
    throw std::runtime_error("no terminal can be made");
  }
  ChildProcess program("/bin/sh", {"-c", "exec " + command + " >" + ptsname(master)});
  Shown shown;
  std::array<char, 4096> piece;
  // It ends with an error when nobody has the terminal open any more.
  for (ssize_t length; (length = read(master, piece.data(), piece.size())) > 0;) {
    shown.text.append(piece.data(), static_cast<std::size_t>(length));
  }
  close(master);
  shown.code = program.wait().value_or(-1);
  return shown;
}

}  // namespace zerva
