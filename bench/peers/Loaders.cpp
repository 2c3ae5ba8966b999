#include <Poco/ClassLoader.h>
#include <console_bridge/console.h>
#include <dlfcn.h>

#include <class_loader/class_loader.hpp>
#include <deque>
#include <stdexcept>

#include "bench/harness/Clock.h"
#include "bench/ours/Libraries.h"
#include "bench/ours/Life.h"
#include "bench/peers/PeerEcho.h"
#include "bench/peers/PeerLibraries.h"
#include "bench/peers/Peers.h"
#include "framework/Dll.h"
#include "framework/Service.h"

namespace zerva::bench {

namespace {

std::string copyPath(int number) { return copiesDirectory() + "/" + copyName(number); }

/** Open, resolve, create with the system alone. */
Figures loadBare(int count) {
  const Stopwatch watch;
  for (int i = 0; i < count; ++i) {
    void* const library = ::dlopen(copyPath(i).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) throw std::runtime_error(::dlerror());
    reinterpret_cast<Service* (*)()>(::dlsym(library, "createEcho"))();
  }
  return {watch.microseconds() / count};
}

/** The same with the platform's wrapper. */
Figures loadOurs(int count) {
  std::deque<Dll> libraries;
  const Stopwatch watch;
  for (int i = 0; i < count; ++i) {
    Dll& library = libraries.emplace_back(copyPath(i));
    void* const creator = library.symbol("createEcho");
    if (const char* error = library.error()) throw std::runtime_error(error);
    reinterpret_cast<Service* (*)()>(creator)();
  }
  return {watch.microseconds() / count};
}

Figures loadPoco(const std::vector<PeerLibrary>& all) {
  Poco::ClassLoader<PeerEcho> loader;
  const Stopwatch watch;
  for (const PeerLibrary& one : all) {
    loader.loadLibrary(one.path);
    const auto& manifest = loader.manifestFor(one.path);
    const auto found = manifest.find(one.name);
    if (found == manifest.end()) throw std::runtime_error("no plug-in in " + one.path);
    found->create();
  }
  return {watch.microseconds() / static_cast<double>(all.size())};
}

Figures loadClassLoader(const std::vector<PeerLibrary>& all) {
  console_bridge::setLogLevel(console_bridge::CONSOLE_BRIDGE_LOG_ERROR);
  std::deque<class_loader::ClassLoader> loaders;
  const Stopwatch watch;
  for (const PeerLibrary& one : all) {
    loaders.emplace_back(one.path, false).createUnmanagedInstance<PeerEcho>(one.name);
  }
  return {watch.microseconds() / static_cast<double>(all.size())};
}

Figures bringUpOurs(int count) { return ourLife({"service_instance: ST", count, count, false}); }

}  // namespace

void loaders(Bench& bench) {
  const int count = bench.sized(1000, 10);
  makeCopies(count);
  const auto poco = peerLibraries("libPocoEcho.so", count);
  const auto classLoader = peerLibraries("libClassLoaderEcho.so", count);
  const Series series =
      bench.run(1, {{"floor", [count] { return loadBare(count); }},
                    {"ours, library only", [count] { return loadOurs(count); }},
                    {"ours, whole bring-up", [count] { return bringUpOurs(count); }},
                    {"Poco", [&] { return loadPoco(poco); }},
                    {"class_loader", [&] { return loadClassLoader(classLoader); }}});
  bench.table("peers-loading", "One of 1,000 distinct libraries with others", "us")
      .add("open, resolve, create", series.cells());
}

}  // namespace zerva::bench
