#include "framework/Dll.h"

#include <cstring>
#include <optional>

#include "tests/fakes/Platform.h"
#include "tests/fakes/Recording.h"
#include "tests/fakes/Text.h"

using zerva::fakes::called;
using zerva::fakes::inQuotes;
using zerva::fakes::Library;
using zerva::fakes::Objects;
using zerva::fakes::Platform;

struct Dll::State {
  std::string path;
  std::string failure;
  bool failed = false;

  void succeed() { failed = false; }
  void fail(const std::string& text) {
    failed = true;
    failure = text;
  }
  /** Whoever still reads the text after the object's end, or after its next operation, sees it. */
  void spoil() { std::memset(failure.data(), '?', failure.size()); }
};

Dll::Dll(const std::string& path) : state_(new State()) {
  state_->path = path.c_str();
  zerva::fakes::constructed(this, "Dll", {inQuotes(path)});
  const Library* library = Platform::findLibrary(state_->path);
  if (library == nullptr) {
    state_->fail(state_->path + ": no such library");
  } else if (library->error) {
    state_->fail(*library->error);
  }
}

Dll::~Dll() {
  if (!Objects::died(this)) return;
  state_->spoil();
  state_.reset();
}

void* Dll::symbol(const std::string& name) {
  state_->spoil();
  called(this, "symbol", {inQuotes(name)});
  const Library* library = Platform::findLibrary(state_->path);
  const std::string key = name.c_str();
  if (library == nullptr || library->symbols.count(key) == 0) {
    state_->fail(state_->path + ": undefined symbol: " + key);
    return nullptr;
  }
  const zerva::fakes::Symbol& symbol = library->symbols.at(key);
  if (symbol.error) {
    state_->fail(*symbol.error);
  } else {
    state_->succeed();
  }
  return symbol.address;
}

const char* Dll::error() {
  called(this, "error", {}, state_->failed ? inQuotes(state_->failure) : "null");
  return state_->failed ? state_->failure.c_str() : nullptr;
}
