// Is needed by another library.

extern "C" __attribute__((visibility("default"))) int hidden() { return 0; }
