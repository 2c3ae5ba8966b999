#include <gtest/gtest.h>

#include <stdexcept>

#include "host/trace/TraceReader.h"
#include "host/trace/TraceResult.h"

namespace zerva {
namespace {

/** @returns what is printed for an error that comes in between; the exit code is checked. */
template <typename Error>
std::string printedFor(const Error& error) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(guardedTraceWork([&]() -> int { throw error; }), 2);
  return testing::internal::GetCapturedStderr();
}

TEST(WorkOnATrace, ThatFails_EndsWithTwoAndSaysWhy) {
  EXPECT_EQ(printedFor(TraceError("a.jsonl:3: error: wrong")), "a.jsonl:3: error: wrong\n");
  EXPECT_EQ(printedFor(std::runtime_error("nobody foresaw it")), "zerva: nobody foresaw it\n");
}

TEST(WorkOnATrace, EndsWithItsOwnCode) {
  EXPECT_EQ(guardedTraceWork([] { return 3; }), 3);
}

}  // namespace
}  // namespace zerva
