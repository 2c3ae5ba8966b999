#include "tests/system/SystemWorld.h"

#include <dlfcn.h>

#include <filesystem>

#include "framework/Executable.h"
#include "runtime/libClientUtils/LibraryDirectories.h"
#include "runtime/libServiceExecutor/Drain.h"
#include "tests/support/Patience.h"

namespace zerva {

namespace {

std::filesystem::path buildDirectory() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path();
}

constexpr const char* kRegistryLine =
    " libServiceRegistry.so createServiceRegistry /zerva/serviceregistry ServiceRegistryIfc\n";

}  // namespace

SystemWorld::SystemWorld() {
  LibraryDirectories::set({buildDirectory() / "plugins", buildDirectory() / "lib"});
}

SystemWorld::~SystemWorld() { end(); }

void SystemWorld::start(const std::string& directives, const std::string& registry) {
  sut = std::make_unique<OpenConfigurator>(&channel, &repository, &protocols, &channelInterceptors,
                                           &invokeInterceptors);
  process((registry.empty() ? "" : registry + kRegistryLine) + directives);
}

void SystemWorld::process(const std::string& directives) {
  sut->processDirectives(directory.write("services.directives", directives));
}

void SystemWorld::end() {
  if (sut == nullptr) return;
  sut->shutdown();
  EXPECT_TRUE(drainExecutors(patience()).complete);
  sut.reset();
}

std::string SystemWorld::relay(const std::string& keyword, const std::string& ifc) {
  return "proxy_info: libRelayAccess.so createRelayProxy " + ifc + " zerva_simple_rmi\n" +
         "invoker_info: libRelayAccess.so createRelayInvoker " + ifc + " zerva_simple_rmi\n" +
         keyword + " libRelay.so createRelay /test/" + ifc + " " + ifc + "\n";
}

std::string SystemWorld::relays(const std::string& keyword, int count) {
  std::string all;
  for (int i = 1; i <= count; ++i) all += relay(keyword, "RelayIfc" + std::to_string(i));
  return all;
}

Relay* SystemWorld::find(const std::string& ifc) {
  return dynamic_cast<Relay*>(sut->findService(ifc));
}

int SystemWorld::invokersMade() {
  const std::filesystem::path library = buildDirectory() / "plugins/libRelayAccess.so";
  void* const handle = dlopen(library.c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (handle == nullptr) return 0;
  const int made = reinterpret_cast<int (*)()>(dlsym(handle, "relayInvokersMade"))();
  dlclose(handle);
  return made;
}

}  // namespace zerva
