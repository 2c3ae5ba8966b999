#include "runtime/libClientUtils/trace/TraceWriter.h"

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <new>
#include <system_error>
#include <vector>

#include "framework/Logging.h"
#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/trace/JsonText.h"
#include "runtime/libClientUtils/trace/Trace.h"
#include "runtime/libClientUtils/trace/TraceEvent.h"
#include "runtime/libClientUtils/trace/TraceRecord.h"

namespace zerva {
namespace {

constexpr char kModule[] = "Trace";
constexpr char kSource[] = "runtime/libClientUtils";
constexpr int kError = 2;

constexpr std::chrono::milliseconds kInterval{100};
constexpr std::chrono::seconds kFirstCounts{1};
constexpr std::chrono::seconds kLongestBetweenCounts{60};
// A service that looks in vain for another one, again and again, does not fill the disk.
constexpr std::uint64_t kLargestFile = std::uint64_t{256} * 1024 * 1024;

std::string errorText(int error) { return std::generic_category().message(error); }

// Whoever reads the trace through a pipe and stops does not stop the process.
constexpr int kLongestWaitForReader = 2000;

/** What is no regular file, a pipe for the most part, must not make anybody wait for good. */
void doNotWait(int file) {
  struct stat status {};
  if (::fstat(file, &status) == 0 && S_ISREG(status.st_mode)) return;
  ::fcntl(file, F_SETFL, O_WRONLY | O_APPEND | O_NONBLOCK);
}

/** @returns whether there is room now. */
bool awaitReader(int file) {
  pollfd awaited{file, POLLOUT, 0};
  int ready = 0;
  do {
    ready = ::poll(&awaited, 1, kLongestWaitForReader);
  } while (ready < 0 && errno == EINTR);
  return ready > 0;
}

/** @returns 0, or the error that ended the writing. */
int writeAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t done = ::write(file, bytes.data(), bytes.size());
    if (done > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(done));
    } else if (done == 0) {
      return ENOSPC;
    } else if (errno == EAGAIN) {
      if (!awaitReader(file)) return ETIMEDOUT;
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

unsigned long numberOf(std::string_view records) {
  unsigned long number = 0;
  for (; !records.empty(); ++number) records.remove_prefix(headerOf(records).size);
  return number;
}

TraceHeader headerNow(TraceKind kind) {
  TraceHeader header;
  header.kind = kind;
  header.t = Trace::now();
  header.thread = ::gettid();
  pthread_getname_np(pthread_self(), header.threadName.data(), header.threadName.size());
  return header;
}

void writeFirst(const std::string& about) {
  const auto wall = std::chrono::system_clock::now().time_since_epoch();
  TraceEvent(TraceKind::Trace)
      .with(TraceKey::Version, 1)
      .with(TraceKey::Pid, ::getpid())
      .with(TraceKey::Bits, std::int64_t{sizeof(void*)} * 8)
      .with(TraceKey::Wall, std::chrono::nanoseconds(wall).count())
      .with(TraceKey::File, about)
      .write();
}

}  // namespace

TraceWriter& TraceWriter::instance() {
  // In a place of its own, since nothing is allocated for a trace that is never started.
  alignas(TraceWriter) static std::array<std::byte, sizeof(TraceWriter)> place;
  static auto* const writer = new (place.data()) TraceWriter;
  return *writer;
}

std::string TraceWriter::start(const std::string& path, const std::string& about) {
  stop();
  const int file =
      ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOCTTY | O_APPEND, 0644);
  if (file < 0) return errorText(errno);
  doNotWait(file);
  if (const auto error = exceptionOf([&] {
        buffers_.reserve();
        tally_.clear();
      })) {
    ::close(file);
    return *error;
  }
  {
    const std::lock_guard lock(fileMutex_);
    file_ = file;
    path_ = path;
    written_ = 0;
  }
  {
    const std::lock_guard lock(mutex_);
    ending_ = false;
  }
  writeFirst(about);
  // Before the thread is there, which ends it when the file cannot be written.
  Trace::want(Trace::kEvents);
  if (const auto error = exceptionOf([&] { thread_ = std::thread([this] { run(); }); })) {
    Trace::wantNoMore(Trace::kEvents);
    const std::lock_guard lock(fileMutex_);
    ::close(file_);
    file_ = -1;
    return *error;
  }
  return {};
}

void TraceWriter::stop() {
  if (!thread_.joinable()) return;
  Trace::wantNoMore(Trace::kEvents);
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  wanted_.notify_one();
  thread_.join();
  flush();
  const std::lock_guard lock(fileMutex_);
  if (file_ >= 0) ::close(file_);
  file_ = -1;
}

void TraceWriter::flush() { writeOut(true); }

void TraceWriter::add(unsigned which, std::string_view record) noexcept {
  if (buffers_.add(which, record)) wake();
}

void TraceWriter::count(unsigned which, const CallKey& key, std::int64_t duration,
                        bool failed) noexcept {
  if (!tally_.add(which, key, duration, failed)) buffers_.countLost(1);
}

void TraceWriter::wake() noexcept {
  {
    const std::lock_guard lock(mutex_);
    full_ = true;
  }
  wanted_.notify_one();
}

void TraceWriter::run() {
  pthread_setname_np(pthread_self(), "trace");
  auto between = std::chrono::steady_clock::duration(kFirstCounts);
  auto nextCounts = std::chrono::steady_clock::now() + between;
  std::unique_lock lock(mutex_);
  while (!ending_) {
    wanted_.wait_for(lock, kInterval, [this] { return ending_ || full_; });
    full_ = false;
    lock.unlock();
    const auto now = std::chrono::steady_clock::now();
    const bool withCounts = now >= nextCounts;
    if (withCounts) {
      between = std::min<std::chrono::steady_clock::duration>(2 * between, kLongestBetweenCounts);
      nextCounts = now + between;
    }
    writeOut(withCounts);
    lock.lock();
  }
}

void TraceWriter::writeOut(bool withCounts) {
  const std::lock_guard lock(fileMutex_);
  if (file_ < 0) return;
  records_.clear();
  buffers_.takeAll(records_);
  const unsigned long events = numberOf(records_);
  const unsigned long lost = buffers_.takeLost();
  std::string lines;
  // Only the trace suffers when there is no memory for it.
  const auto error = exceptionOf([&] {
    const bool fits = appendEvents(lines);
    if (withCounts) appendCounts(lines);
    appendLost(lines, fits ? lost : lost + events);
  });
  if (error) {
    buffers_.countLost(lost + events);
    if (withCounts) tally_.changeAll();
    return;
  }
  put(lines);
}

/** @returns false when the file is too large already. */
bool TraceWriter::appendEvents(std::string& lines) {
  if (written_ > kLargestFile) return false;
  struct Place {
    std::int64_t t;
    std::string_view record;
  };
  std::vector<Place> places;
  std::string_view rest = records_;
  while (!rest.empty()) {
    const TraceHeader header = headerOf(rest);
    places.push_back({header.t, rest.substr(0, header.size)});
    rest.remove_prefix(header.size);
  }
  std::stable_sort(places.begin(), places.end(),
                   [](const Place& one, const Place& other) { return one.t < other.t; });
  for (const Place& place : places) appendLine(lines, place.record);
  return true;
}

void TraceWriter::appendCounts(std::string& lines) {
  const TraceHeader header = headerNow(TraceKind::Calls);
  const auto text = [&](std::string_view name, std::string_view value) {
    lines += ",\"" + std::string(name) + "\":";
    appendJsonText(lines, value);
  };
  const auto number = [&](std::string_view name, const std::string& value) {
    lines += ",\"" + std::string(name) + "\":" + value;
  };
  tally_.visitChanged([&](const CallKey& key, const CallFigures& figures) {
    appendBeginning(lines, header, key.service);
    text("channel", key.channel);
    text("interface", key.interface);
    text("method", key.method);
    number("count", std::to_string(figures.count));
    number("failures", std::to_string(figures.failures));
    number("total", std::to_string(figures.total));
    std::string times;
    for (const auto& [last, count] : figures.times) {
      times +=
          (times.empty() ? "[" : ",[") + std::to_string(last) + "," + std::to_string(count) + "]";
    }
    number("times", "[" + times + "]");
    lines += "}\n";
  });
}

void TraceWriter::appendLost(std::string& lines, unsigned long lost) {
  if (lost == 0) return;
  const TraceHeader header = headerNow(TraceKind::Lost);
  appendBeginning(lines, header, {});
  lines += ",\"events\":" + std::to_string(lost) + "}\n";
}

void TraceWriter::put(const std::string& lines) {
  if (const int error = writeAll(file_, lines); error != 0) return end(error);
  written_ += lines.size();
}

/** The file cannot be written any more. */
void TraceWriter::end(int error) {
  Trace::wantNoMore(Trace::kEvents);
  ::close(file_);
  file_ = -1;
  static_cast<void>(exceptionOf([&] {
    const std::string why = error == ETIMEDOUT ? "nobody reads it" : errorText(error);
    logAppUni(kModule, kSource, kError, __LINE__, "the trace '%s' ends here: %s", path_.c_str(),
              why.c_str());
  }));
}

}  // namespace zerva
