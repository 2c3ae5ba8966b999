#include "framework/Dll.h"

#include <dlfcn.h>

#include <cstdint>

#include "runtime/libClientUtils/LibraryDirectories.h"
#include "runtime/libClientUtils/OpenLibraries.h"
#include "runtime/libClientUtils/trace/TraceEvent.h"

struct Dll::State {
  /** Where the library was looked for, for messages. */
  std::string path;
  void* handle = nullptr;
  bool failed = false;
  std::string error;

  void fail(const std::string& cause);
  void succeed();
};

namespace {

/** @param begin what `Trace::begin` gave before. */
void traceLibrary(zerva::TraceKind kind, const std::string& library, std::int64_t begin,
                  const char* symbol, const char* error) {
  zerva::TraceEvent event(kind);
  event.since(begin).with(zerva::TraceKey::Library, library);
  if (symbol != nullptr) event.with(zerva::TraceKey::Symbol, symbol);
  event.withError(error).write();
}

/** The loader's text for what failed last on this thread; asking takes it away. */
std::string loaderError() {
  const char* text = ::dlerror();
  return text == nullptr ? "" : text;
}

}  // namespace

void Dll::State::fail(const std::string& cause) {
  failed = true;
  // The loader names the library at fault, which may be another one that this one needs.
  const bool named = !path.empty() && cause.find(path) != std::string::npos;
  error = named ? cause : "'" + path + "': " + cause;
}

void Dll::State::succeed() {
  failed = false;
  error.clear();
}

Dll::Dll(const std::string& path) : state_(std::make_unique<State>()) {
  const std::string name = path.c_str();
  state_->path = zerva::OpenLibraries::placeOf(name);
  if (state_->path.empty()) state_->path = zerva::LibraryDirectories::resolve(name);
  zerva::OpenLibraries::add(this);
  // The loader takes an empty name for the program itself.
  if (name.empty()) {
    state_->fail("no library is named");
    return;
  }
  const std::int64_t begin = zerva::Trace::begin();
  state_->handle = ::dlopen(state_->path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (state_->handle == nullptr) {
    state_->fail(loaderError());
  } else {
    zerva::OpenLibraries::opened(this, name, state_->path);
  }
  if (zerva::Trace::on()) {
    traceLibrary(zerva::TraceKind::LibraryOpened, state_->path, begin, nullptr, error());
  }
}

Dll::~Dll() {
  if (state_->handle != nullptr) {
    ::dlclose(state_->handle);
    if (zerva::Trace::on()) {
      traceLibrary(zerva::TraceKind::LibraryClosed, state_->path, 0, nullptr, nullptr);
    }
  }
  zerva::OpenLibraries::remove(this);
}

void* Dll::symbol(const std::string& name) {
  if (state_->handle == nullptr) {
    state_->fail(std::string("symbol '") + name.c_str() + "': the library is not open");
    return nullptr;
  }
  loaderError();
  const std::int64_t begin = zerva::Trace::begin();
  void* const address = ::dlsym(state_->handle, name.c_str());
  const std::string error = loaderError();
  if (zerva::Trace::on()) {
    traceLibrary(zerva::TraceKind::SymbolResolved, state_->path, begin, name.c_str(),
                 error.empty() ? nullptr : error.c_str());
  }
  if (error.empty()) {
    state_->succeed();
    return address;
  }
  state_->fail(error);
  return nullptr;
}

const char* Dll::error() { return state_->failed ? state_->error.c_str() : nullptr; }
