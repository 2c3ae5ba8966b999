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

  /** How many calls of this addition this thread is in. */
  static int count(const SuppliedSink& sink) {
    int calls = 0;
    for (const Call* call = innermost_; call != nullptr; call = call->outer_) {
      if (&call->sink_ == &sink) ++calls;
    }
    return calls;
  }

 private:
  static thread_local Call* innermost_;
  SuppliedSink& sink_;
  Call* const outer_;
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
  const int own = Call::count(*this);
  std::unique_lock lock(mutex_);
  closed_ = true;
  // A thread that closes from inside a call cannot end that call while it waits.
  calls_ -= own;
  callEnded_.notify_all();
  callEnded_.wait(lock, [this] { return calls_ == 0; });
  calls_ += own;
}

}  // namespace zerva
