#include <atomic>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "framework/Export.h"
#include "framework/Service.h"

/** Has what keeps a library mapped for ever where the compiler marks it as unique. */
template <typename>
struct Counter {
  static inline std::atomic<int> count{0};
  static std::string& text() {
    static std::string instance = "a text of the library";
    return instance;
  }
};

/** An exception that nobody outside of this library knows. */
struct PluginFailure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

class PluginService : public Service {
 public:
  void init(SvcRTEContext* /*context*/) override {}
  void run() override { throw PluginFailure("the plugin failed"); }
};

extern "C" ZERVA_EXPORT int countCalls() {
  Counter<int>::text() += "!";
  return ++Counter<int>::count;
}

extern "C" ZERVA_EXPORT Service* createPluginService() { return new PluginService; }

/** Tells at its end, through a variable of the environment, that the library was closed. */
namespace {
struct Closing {
  ~Closing() { ::setenv("ZERVA_TEST_PLUGIN_CLOSED", "yes", 1); }
} closing;
}  // namespace

// A symbol whose address is null.
asm(".globl symbolAtNull\n.set symbolAtNull, 0\n");
