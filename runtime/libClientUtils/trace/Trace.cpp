#include "runtime/libClientUtils/trace/Trace.h"

#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <mutex>
#include <set>

#include "runtime/libClientUtils/ServingThread.h"
#include "runtime/libClientUtils/trace/SeenCalls.h"
#include "runtime/libClientUtils/trace/TraceEvent.h"
#include "runtime/libClientUtils/trace/TraceWriter.h"

namespace zerva {
namespace {

/** What is known of the calling thread; without a destructor, so that it needs no memory. */
struct TracedThread {
  std::int32_t id = 0;
  std::array<char, 16> name{};
  /** For whom it works when it serves nobody; of a text that lives long enough. */
  std::string_view service;
  bool comingUp = false;
  bool ownCode = true;
  /** Whether that holds also while it serves somebody. */
  bool inScope = false;
};

constinit thread_local TracedThread tracedThread;

const TracedThread& thisThread() {
  TracedThread& thread = tracedThread;
  if (thread.id == 0) {
    thread.id = ::gettid();
    pthread_getname_np(pthread_self(), thread.name.data(), thread.name.size());
  }
  return thread;
}

/**
 * @returns the same text, which is never destroyed; nothing while no calls are counted, and when
 *     there is no memory for it.
 */
std::string_view keep(std::string_view text) {
  struct Kept {
    std::mutex mutex;
    std::set<std::string, std::less<>> texts;  // guarded by mutex
  };
  std::string_view same;
  if (text.empty() || !Trace::countsCalls()) return same;
  Trace::guarded([&] {
    static auto* const kept = new Kept;
    const std::lock_guard lock(kept->mutex);
    const auto known = kept->texts.find(text);
    same = known != kept->texts.end() ? *known : *kept->texts.emplace(text).first;
  });
  return same;
}

TraceHeader headerNow(TraceKind kind, std::int64_t t) {
  const TracedThread& thread = thisThread();
  TraceHeader header;
  header.t = t;
  header.thread = thread.id;
  header.kind = kind;
  header.threadName = thread.name;
  return header;
}

unsigned numberOfThisThread() { return static_cast<unsigned>(thisThread().id); }

}  // namespace

std::atomic<unsigned char> Trace::wanted_{0};

std::string Trace::start(const std::string& path, const std::string& about) {
  return TraceWriter::instance().start(path, about);
}

void Trace::stop() { TraceWriter::instance().stop(); }

void Trace::flush() { TraceWriter::instance().flush(); }

std::int64_t Trace::now() {
  timespec time{};
  ::clock_gettime(CLOCK_MONOTONIC, &time);
  return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

void Trace::workFor(std::string_view service, bool comingUp, bool ownCode) noexcept {
  tracedThread.service = keep(service);
  tracedThread.comingUp = comingUp;
  tracedThread.ownCode = ownCode;
}

bool Trace::runsOwnCode() { return tracedThread.ownCode; }

void Trace::lose() noexcept { TraceWriter::instance().lose(); }

bool Trace::worksForOneComingUp() { return tracedThread.comingUp; }

std::string_view Trace::servedByThisThread() {
  const Serving* const serving = servingThread().serving;
  if (serving != nullptr && !tracedThread.inScope) return serving->channelName();
  return tracedThread.service;
}

void Trace::called(std::string_view channel, std::string_view interface, std::string_view method,
                   std::int64_t begin, const std::string& error) {
  if (begin == 0) return;
  const CallKey key{servedByThisThread(), channel, interface, method};
  const std::int64_t duration = now() - begin;
  if (SeenCalls::on()) SeenCalls::add(numberOfThisThread(), key, duration, !error.empty());
  if (!on()) return;
  TraceWriter::instance().count(numberOfThisThread(), key, duration, !error.empty());
  const bool announces = interface == "ServiceRegistryIfc" && method == "registerInterface";
  if (!announces && !tracedThread.comingUp) return;
  TraceEvent event(announces ? TraceKind::Announcement : TraceKind::Call);
  event.since(begin).with(TraceKey::Channel, channel);
  if (!announces) event.with(TraceKey::Interface, interface).with(TraceKey::Method, method);
  event.withError(error.empty() ? nullptr : error.c_str()).write();
}

TraceWorkScope::TraceWorkScope(std::string_view service, bool alsoWhileServing)
    : before_(tracedThread.service),
      comingUp_(tracedThread.comingUp),
      ownCode_(tracedThread.ownCode),
      inScope_(tracedThread.inScope) {
  tracedThread.service = service;
  tracedThread.comingUp = false;
  tracedThread.ownCode = true;
  tracedThread.inScope = alsoWhileServing;
}

TraceWorkScope::~TraceWorkScope() {
  tracedThread.service = before_;
  tracedThread.comingUp = comingUp_;
  tracedThread.ownCode = ownCode_;
  tracedThread.inScope = inScope_;
}

TraceEvent::TraceEvent(TraceKind kind) : t_(Trace::now()), record_(headerNow(kind, t_)) {}

TraceEvent& TraceEvent::with(TraceKey key, std::string_view text) {
  addService();
  record_.add(key, text);
  return *this;
}

TraceEvent& TraceEvent::with(TraceKey key, std::int64_t number) {
  addService();
  record_.add(key, number);
  return *this;
}

TraceEvent& TraceEvent::withError(const char* error) {
  return error == nullptr ? *this : with(TraceKey::Error, error);
}

TraceEvent& TraceEvent::since(std::int64_t begin) {
  return begin == 0 ? *this : with(TraceKey::Duration, t_ - begin);
}

TraceEvent& TraceEvent::forService(std::string_view service) {
  serviceKnown_ = true;
  record_.addService(service);
  return *this;
}

void TraceEvent::write() noexcept {
  addService();
  TraceWriter::instance().add(numberOfThisThread(), record_.bytes());
}

void TraceEvent::addService() {
  if (!serviceKnown_) forService(Trace::servedByThisThread());
}

}  // namespace zerva
