#pragma once

#include <unistd.h>

#include <utility>

namespace zerva {

/** Owns an open file or socket. */
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  ~FileDescriptor() { reset(); }
  FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(other.release()) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }

  int get() const { return descriptor_; }
  explicit operator bool() const { return descriptor_ >= 0; }

  /** Gives the descriptor to the caller, who closes it. */
  int release() { return std::exchange(descriptor_, -1); }

  void reset() {
    if (descriptor_ >= 0) {
      ::close(release());
    }
  }

 private:
  int descriptor_ = -1;
};

}  // namespace zerva
