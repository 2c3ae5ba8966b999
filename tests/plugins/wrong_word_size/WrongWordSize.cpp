// Built for the other word size, by the compiler's own option.

extern "C" __attribute__((visibility("default"))) int wordSize() {
  return static_cast<int>(sizeof(void*));
}
