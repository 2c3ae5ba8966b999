#include "runtime/libLoggingHandler/SuppliedSink.h"

#include <cxxabi.h>

#include <exception>
#include <utility>

#include "runtime/libLoggingHandler/OrdinarySinks.h"

namespace zerva {
namespace {

void reportThrowing(const LogRecord& record, const char* what) {
  LogRecord report;
  report.module = "Logging";
  report.file = "runtime/libLoggingHandler";
  report.level = 2;
  report.line = __LINE__;
  report.text = "A log sink threw on a line of '" + record.module + "': " + what;
  report.time = record.time;
  OrdinarySinks::instance().write(report);
}

}  // namespace

/** A call of a sink on the stack of this thread. */
class SuppliedSink::Call {
 public:
  explicit Call(SuppliedSink& sink) : sink_(sink), outer_(innermost_) { innermost_ = this; }
  ~Call() {
    innermost_ = outer_;
    const std::lock_guard lock(sink_.mutex_);
    --sink_.calls_;
    if (!excused_) --sink_.awaited_;
    sink_.callEnded_.notify_all();
  }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

  /** Whether this thread is in a call of the program's sink, through whichever addition. */
  static bool underWay(const LogSink& sink) {
    for (const Call* call = innermost_; call != nullptr; call = call->outer_) {
      if (call->sink_.is(sink)) return true;
    }
    return false;
  }

  /**
   * Under the lock: those who close from inside a call do not wait any more for this thread's
   * calls.
   *
   * @returns whether it is in one.
   */
  static bool excuseOwn(SuppliedSink& sink) {
    bool inside = false;
    for (Call* call = innermost_; call != nullptr; call = call->outer_) {
      if (&call->sink_ == &sink) {
        inside = true;
        if (!std::exchange(call->excused_, true)) --sink.awaited_;
      }
    }
    return inside;
  }

 private:
  static thread_local Call* innermost_;
  SuppliedSink& sink_;
  Call* const outer_;
  bool excused_ = false;  // guarded by the sink's mutex
};

thread_local SuppliedSink::Call* SuppliedSink::Call::innermost_ = nullptr;

SuppliedSink::SuppliedSink(LogSink& sink, std::string module, int level)
    : sink_(sink), module_(std::move(module)), level_(level) {}

bool SuppliedSink::takes(std::string_view module, int level) const {
  return level <= level_ && (module_.empty() || module_ == module);
}

// A forced unwinding is caught without an object, which the reference that names it is bound to.
__attribute__((no_sanitize("null"))) void SuppliedSink::write(const LogRecord& record) {
  if (Call::underWay(sink_)) return;
  {
    const std::lock_guard lock(mutex_);
    if (closed_) return;
    ++calls_;
    ++awaited_;
  }
  const Call call(*this);
  try {
    sink_.write(record);
  } catch (abi::__forced_unwind&) {
    throw;
  } catch (const std::exception& exception) {
    reportThrowing(record, exception.what());
  } catch (...) {
    // The line was logged by code that expects logging not to throw.
    reportThrowing(record, "something that is no std::exception");
  }
}

void SuppliedSink::close() {
  std::unique_lock lock(mutex_);
  closed_ = true;
  // A thread that closes from inside a call cannot end that call while it waits: such threads do
  // not wait for each other's calls. One that is in no call waits for all of them.
  const bool inside = Call::excuseOwn(*this);
  callEnded_.notify_all();
  callEnded_.wait(lock, [&] { return inside ? awaited_ == 0 : calls_ == 0; });
}

}  // namespace zerva
