#include "tests/host/trace/TraceText.h"

#include <cmath>
#include <sstream>

#include "host/trace/RunModelBuilder.h"
#include "host/trace/TraceReader.h"

namespace zerva {
namespace {

std::string nanoseconds(double milliseconds) {
  return std::to_string(std::llround(milliseconds * 1e6));
}

}  // namespace

std::string duration(double milliseconds) { return "\"duration\":" + nanoseconds(milliseconds); }

TraceText::TraceText() {
  add(0, "trace", "", R"("version":1,"pid":10,"bits":32,"file":"a.directives")");
  add(0, "phase", "", R"("phase":"starting")");
}

TraceText& TraceText::add(double at, const std::string& event, const std::string& service,
                          const std::string& fields) {
  return addOn(10, at, event, service, fields);
}

TraceText& TraceText::addOn(int thread, double at, const std::string& event,
                            const std::string& service, const std::string& fields) {
  text_ += R"({"event":")" + event + R"(","t":)" + nanoseconds(at) + R"(,"thread":{"id":)" +
           std::to_string(thread) + R"(,"name":"thread"})";
  if (!service.empty()) text_ += R"(,"service":")" + service + "\"";
  if (!fields.empty()) text_ += "," + fields;
  text_ += "}\n";
  return *this;
}

TraceText& TraceText::immediate(double at, const std::string& service, double init) {
  add(at, "service_declared", service, R"("kind":"immediate","library":"lib.so")");
  add(at + 1, "creator_called", service);
  add(at + 2, "channel_opened", service, "\"channel\":\"" + service + "\"");
  add(at + 2, "executor_made", service, R"("mode":"ST")");
  add(at + 3, "service_recorded", service);
  add(at + 4, "announcement", service, R"("channel":"/zerva/serviceregistry",)" + duration(1));
  add(at + 4, "init_begins", service);
  return add(at + 4 + init, "init_ended", service, duration(init));
}

RunModel TraceText::run() const {
  std::istringstream in(text_);
  return RunModelBuilder("a.jsonl").build(readTrace(in, "a.jsonl"));
}

std::string traceFile(const std::string& name) {
  return ZERVA_SOURCE_DIRECTORY "/tests/host/trace/files/" + name;
}

}  // namespace zerva
