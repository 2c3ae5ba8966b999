// Uses what nobody has.

namespace plant {
int pressure(const char* pump);
}

extern "C" int levelOf(const char* tank);

extern "C" __attribute__((visibility("default"))) int createUndefined() {
  return plant::pressure("one") + levelOf("two");
}
