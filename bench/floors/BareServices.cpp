#include "bench/floors/BareServices.h"

#include <dlfcn.h>

#include <stdexcept>

#include "framework/Service.h"

namespace zerva::bench {

void BareServices::bringUp(const std::string& path, const std::string& announcement) {
  One& one = all_.emplace_back();
  if (parts_.library) {
    one.library = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (one.library == nullptr) throw std::runtime_error(::dlerror());
    void* const creator = ::dlsym(one.library, "createEcho");
    if (creator == nullptr) throw std::runtime_error(::dlerror());
    one.service = reinterpret_cast<Service* (*)()>(creator)();
  }
  one.thread = std::make_unique<PlainThread>(&BareServices::sleep, &one);
  if (parts_.message) registry_.put(announcement);
}

void BareServices::sleep(void* one) {
  Word& over = static_cast<One*>(one)->over;
  while (over == 0) sleepWhile(over, 0);
}

void BareServices::takeDown() {
  for (One& one : all_) {
    one.over = 1;
    wakeOne(one.over);
    one.thread->join();
    delete one.service;
    if (one.library != nullptr) ::dlclose(one.library);
  }
  all_.clear();
}

}  // namespace zerva::bench
