#include "framework/Threader.h"

#include <cxxabi.h>
#include <pthread.h>
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <system_error>
#include <utility>

#include "framework/Logging.h"
#include "runtime/libClientUtils/Description.h"
#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/Futex.h"
#include "runtime/libClientUtils/Parker.h"
#include "runtime/libClientUtils/ThreadSettings.h"
#include "runtime/libClientUtils/ThreadState.h"
#include "runtime/libClientUtils/trace/TraceEvent.h"

namespace {

constexpr char kModule[] = "Threads";
constexpr char kSource[] = "runtime/libClientUtils";
constexpr int kError = 2;
constexpr int kWarning = 3;

/** What a new thread is told. */
struct Start {
  Threadable* body;
  /** Has what the body is: the body may delete itself. */
  std::shared_ptr<Threadable::State> state;
  std::string name;
  ThreadPriority priority;
  /** Whether the thread starts with the scheduling of the process. */
  bool scheduledAsProcess;
  std::shared_ptr<zerva::Parker> parker;
  /** Who it works for: the one who started it. */
  std::string service;
};

/** Notes at the end, however it comes, that the thread has left the body. */
class InBody {
 public:
  explicit InBody(Threadable::State& state) : state_(state) {}
  ~InBody() {
    const std::lock_guard lock(state_.mutex);
    state_.bodyLeft = true;
  }
  InBody(const InBody&) = delete;
  InBody& operator=(const InBody&) = delete;

 private:
  Threadable::State& state_;
};

std::string errorText(int error) { return std::generic_category().message(error); }

void traceStart(const Start& start) {
  if (!zerva::Trace::on()) return;
  // What leaves this thread ends the process.
  zerva::Trace::guarded([&] {
    zerva::TraceEvent(zerva::TraceKind::ThreadRunning)
        .with(zerva::TraceKey::Body, start.state->body->text())
        .write();
  });
}

void applyName(const std::string& name) {
  constexpr std::size_t kLongest = 15;
  pthread_setname_np(pthread_self(), name.substr(0, kLongest).c_str());
}

/**
 * @returns whether what the calling thread makes starts with the scheduling of the process: when it
 *     is the one that the process began with, and hands its own on.
 */
bool handsProcessScheduling() {
  // Of a child that another thread forked off it stays false, and more is asked than is needed.
  thread_local const bool first = ::gettid() == ::getpid();
  return first && (::sched_getscheduler(0) & SCHED_RESET_ON_FORK) == 0;
}

void applyPriority(ThreadPriority priority, const std::string& name, bool scheduledAsProcess) {
  if (scheduledAsProcess && priority == THREAD_PRIORITY_NORMAL) return;
  // A thread starts with what the thread that made it has, which may be anything.
  int policy = SCHED_IDLE;
  sched_param parameters{};
  if (priority == THREAD_PRIORITY_HIGH) {
    policy = SCHED_RR;
    parameters.sched_priority = ::sched_get_priority_min(SCHED_RR);
  } else if (priority != THREAD_PRIORITY_LOW) {
    const pid_t process = ::getpid();
    policy = ::sched_getscheduler(process);
    if (policy == ::sched_getscheduler(0)) return;
    ::sched_getparam(process, &parameters);
  }
  const int error = pthread_setschedparam(pthread_self(), policy, &parameters);
  if (error == 0) return;
  logAppUni(kModule, kSource, kWarning, __LINE__,
            "The thread '%s' keeps the priority that it was made with: %s", name.c_str(),
            errorText(error).c_str());
}

/** Says less when there is no memory for all of it; an exception of its own would end the process.
 */
void reportException(const Start& start) {
  const auto noWords = zerva::exceptionOf([&] {
    const std::string text = zerva::currentExceptionText();
    logAppUni(kModule, kSource, kError, __LINE__,
              "An exception ended the thread '%s' with the body %s: %s", start.name.c_str(),
              start.state->body->text().c_str(), text.c_str());
  });
  if (!noWords) return;
  logAppUni(kModule, kSource, kError, __LINE__, "An exception ended the thread '%s'",
            start.name.c_str());
}

// A forced unwinding is caught without an object, which the reference that names it is bound to.
__attribute__((no_sanitize("null"))) void* runThread(void* argument) {
  const std::unique_ptr<Start> start(static_cast<Start*>(argument));
  const zerva::Parker::Given parker(start->parker);
  applyName(start->name);
  applyPriority(start->priority, start->name, start->scheduledAsProcess);
  const InBody inBody(*start->state);
  const zerva::TraceWorkScope itsStarter(start->service, false);
  traceStart(*start);
  try {
    start->body->run();
  } catch (abi::__forced_unwind&) {
    // The thread is being cancelled or ends itself; stopping that would end the process.
    throw;
  } catch (...) {
    // A thread has nobody to tell but the log, and the other services are not to die of it.
    reportException(*start);
  }
  return nullptr;
}

/**
 * @param start given to the thread when there is one.
 * @returns 0 or the error.
 */
int makeThread(pthread_t& thread, std::unique_ptr<Start>& start, std::size_t stackSize) {
  pthread_attr_t attributes;
  int error = pthread_attr_init(&attributes);
  if (error != 0) return error;
  error = pthread_attr_setstacksize(&attributes, stackSize);
  if (error == 0) error = pthread_create(&thread, &attributes, runThread, start.get());
  if (error == 0) static_cast<void>(start.release());
  pthread_attr_destroy(&attributes);
  return error;
}

/** Waits for what is left of a thread that has left the body. @returns false when it has not. */
bool makeRoom(Threadable::State& state, std::unique_lock<std::mutex>& lock) {
  while (state.phase != Threadable::State::Phase::kNone) {
    if (!state.bodyLeft || state.onOwnThread()) return false;
    state.join(lock);
  }
  return true;
}

}  // namespace

Threader::Threader() = default;

Threader::~Threader() = default;

bool Threader::spawn(unsigned long* threadId, Threadable* body, std::string name,
                     ThreadPriority priority, int stackSize) {
  if (threadId != nullptr) *threadId = 0;
  auto description = std::make_shared<const zerva::Description>(body);
  auto start = std::make_unique<Start>(
      Start{body, {}, std::move(name), priority, handsProcessScheduling(), {}, {}});
  const auto fail = [&](const std::string& cause) {
    logAppUni(kModule, kSource, kError, __LINE__,
              "The thread '%s' with the body %s cannot be made: %s", start->name.c_str(),
              description->text().c_str(), cause.c_str());
    return false;
  };
  if (body == nullptr) return fail("there is no body");
  start->state = body->threadState();
  start->parker = std::make_shared<zerva::Parker>();
  if (zerva::Trace::countsCalls()) {
    zerva::Trace::guarded([&] { start->service = zerva::Trace::servedByThisThread(); });
  }
  const std::size_t bytes =
      zerva::ThreadSettings::stackSize(static_cast<std::size_t>(std::max(0, stackSize)));
  static const bool prepared = (zerva::prepareForManySleepers(), true);
  static_cast<void>(prepared);
  // The thread may have ended, and its start with it, before it is noted.
  const std::shared_ptr<Threadable::State> state = start->state;
  int error = 0;
  {
    std::unique_lock lock(state->mutex);
    if (!makeRoom(*state, lock)) {
      lock.unlock();
      return fail("the body runs already");
    }
    state->body = description;
    error = makeThread(state->thread, start, bytes);
    if (error == 0) {
      state->phase = Threadable::State::Phase::kThere;
      state->bodyLeft = false;
      if (threadId != nullptr) *threadId = static_cast<unsigned long>(state->thread);
    }
  }
  return error == 0 || fail(errorText(error));
}
