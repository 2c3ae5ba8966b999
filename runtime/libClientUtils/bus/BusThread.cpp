#include "runtime/libClientUtils/bus/BusThread.h"

#include <pthread.h>
#include <signal.h>

#include <asio/executor_work_guard.hpp>
#include <utility>

#include "framework/Threader.h"
#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/bus/BusLog.h"

namespace zerva {

namespace {

// All is delivered on it that no waiting thread reads, which calls interceptors of others and may
// start threads.
constexpr int kStack = 512 * 1024;

}  // namespace

BusThread::BusThread(std::shared_ptr<asio::io_context> context) : context_(std::move(context)) {}

BusThread::~BusThread() { stop(); }

bool BusThread::start() {
  // The program's signals are for the program's own threads.
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  unsigned long id = 0;
  Threader threader;
  const bool made = threader.spawn(&id, this, "bus", THREAD_PRIORITY_NORMAL, kStack);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return made;
}

void BusThread::stop() {
  context_->stop();
  waitForThreadCompletion();
}

void BusThread::run() {
  const auto work = asio::make_work_guard(*context_);
  while (!context_->stopped()) {
    if (const auto error = exceptionOf([this] { context_->run(); })) {
      BUS_LOG(2, "something was left undone: %s", error->c_str());
    }
  }
}

}  // namespace zerva
