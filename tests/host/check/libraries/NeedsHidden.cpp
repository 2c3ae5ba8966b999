// Needs another library. Whether that is found depends on how this one is linked.

extern "C" int hidden();

extern "C" __attribute__((visibility("default"))) void* createNeeding() {
  return hidden() == 0 ? nullptr : nullptr;
}
