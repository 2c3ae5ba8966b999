#include "bench/floors/PlainThread.h"

#include <stdexcept>

#include "runtime/libClientUtils/ThreadSettings.h"

namespace zerva::bench {

PlainThread::PlainThread(Body body, void* argument) : body_(body), argument_(argument) {
  static const std::size_t stack = ThreadSettings::stackSize(0);
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, stack);
  const int error = pthread_create(&thread_, &attributes, &PlainThread::run, this);
  pthread_attr_destroy(&attributes);
  if (error != 0) throw std::runtime_error("no thread can be made");
}

void* PlainThread::run(void* self) {
  const auto* const thread = static_cast<PlainThread*>(self);
  thread->body_(thread->argument_);
  return nullptr;
}

void PlainThread::join() { pthread_join(thread_, nullptr); }

}  // namespace zerva::bench
