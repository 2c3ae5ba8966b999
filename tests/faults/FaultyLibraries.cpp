// Opening a library and resolving a symbol, which can fail. Where it is instrumented only the
// first: the sanitizers look their own functions up with dlsym, as the caller that they are.

#include <dlfcn.h>

#include <cstring>
#include <new>

#include "framework/Proxy.h"
#include "tests/faults/FaultyCalls.h"

namespace {

using zerva::fault::hits;
using zerva::fault::Kind;
using zerva::fault::systems;

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

using CreateProxy = Proxy* (*)();

CreateProxy ownCreator = nullptr;

Proxy* createProxyOrThrow() {
  if (hits(Kind::Proxy)) throw std::bad_alloc();
  return ownCreator();
}

#endif

}  // namespace

extern "C" {

void* faultyDlOpen(const char* file, int mode) ZERVA_FAULTY("dlopen");

void* faultyDlOpen(const char* file, int mode) {
  // So that dlerror tells of it as it does of any.
  const char* const wanted = hits(Kind::DlOpen) ? "/none/libThatIsThere.so" : file;
  return reinterpret_cast<void* (*)(const char*, int)>(systems("dlopen"))(wanted, mode);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

void* faultyDlSym(void* library, const char* name) ZERVA_FAULTY("dlsym");

void* faultyDlSym(void* library, const char* name) {
  const char* const wanted = hits(Kind::DlSym) ? "noneThatIsThere" : name;
  void* const found =
      reinterpret_cast<void* (*)(void*, const char*)>(systems("dlsym"))(library, wanted);
  if (found == nullptr || std::strcmp(wanted, "createRelayProxy") != 0) return found;
  ownCreator = reinterpret_cast<CreateProxy>(found);
  return reinterpret_cast<void*>(&createProxyOrThrow);
}

#endif
}
