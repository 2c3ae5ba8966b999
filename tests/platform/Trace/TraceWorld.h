#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "host/trace/TraceReader.h"
#include "runtime/libClientUtils/trace/TraceEvent.h"
#include "tests/support/FileText.h"
#include "tests/support/TempDirectory.h"

namespace zerva {

/** Traces to a file, and reads what is in it. */
class TraceWorld : public testing::Test {
 protected:
  ~TraceWorld() override {
    Trace::stop();
    Trace::workFor({}, false);
  }

  void start() { ASSERT_EQ(Trace::start(path(), "a.directives"), ""); }

  std::string path() const { return directory.file("trace.jsonl").string(); }

  /** Ends the trace. @returns its lines. */
  std::vector<TraceLine> lines() {
    Trace::stop();
    return readTraceFile(path());
  }

  /** Ends the trace. @returns its lines of one event. */
  std::vector<TraceLine> lines(const std::string& event) {
    std::vector<TraceLine> all = lines();
    all.erase(std::remove_if(all.begin(), all.end(),
                             [&](const TraceLine& line) { return line.event != event; }),
              all.end());
    return all;
  }

  const TempDirectory directory;
};

}  // namespace zerva
