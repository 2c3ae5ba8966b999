#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "tests/support/FileText.h"
#include "tests/support/TempDirectory.h"

namespace zerva {

/** Leads the program's standard error to a file as long as it lives. */
class StandardErrorCapture {
 public:
  StandardErrorCapture() : before_(::dup(STDERR_FILENO)) {
    const int file = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    ::dup2(file, STDERR_FILENO);
    ::close(file);
  }
  ~StandardErrorCapture() {
    ::dup2(before_, STDERR_FILENO);
    ::close(before_);
  }
  StandardErrorCapture(const StandardErrorCapture&) = delete;
  StandardErrorCapture& operator=(const StandardErrorCapture&) = delete;

  std::string text() const { return readFile(path_); }

  /** What the environment says of a standard error that leads to the journal. */
  static std::string journalStream() {
    struct stat status {};
    ::fstat(STDERR_FILENO, &status);
    return std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
  }

 private:
  const TempDirectory directory_;
  const std::filesystem::path path_ = directory_.file("stderr");
  const int before_;
};

}  // namespace zerva
