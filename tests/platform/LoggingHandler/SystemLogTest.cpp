#include <gmock/gmock.h>
#include <syslog.h>

#include <cstdarg>
#include <cstdio>

#include "tests/platform/LoggingHandler/LoggingTest.h"

namespace {

std::vector<std::string>& systemLog() {
  static std::vector<std::string> lines;
  return lines;
}

}  // namespace

/** Takes the place of the C library's, so that nothing reaches the machine's own log. */
extern "C" ZERVA_EXPORT void syslog(int priority, const char* format, ...) {
  char text[1000];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  systemLog().push_back("<" + std::to_string(priority) + ">" + text);
}

namespace zerva {
namespace {

class SystemLog : public LoggingTest {
 protected:
  SystemLog() { systemLog().clear(); }
  void log(int level, const char* line) {
    logAppUni(module.c_str(), "src/File", level, 12, "%s", line);
  }
};

TEST_F(SystemLog, GetsNothingUnlessItIsTurnedOn) {
  log(1, "a line");

  EXPECT_THAT(systemLog(), testing::IsEmpty());
}

TEST_F(SystemLog, GetsModuleSourceAndTextWithThePriorityOfTheLevel) {
  LogSettings::logToSystemLog(true);

  log(2, "an error");
  log(4, "100% %s information");

  const std::string rest = "[" + module + "] src/File:12 ";
  EXPECT_THAT(
      systemLog(),
      testing::ElementsAre("<" + std::to_string(LOG_ERR) + ">" + rest + "an error",
                           "<" + std::to_string(LOG_INFO) + ">" + rest + "100% %s information"));
}

TEST_F(SystemLog, GetsNothingMoreWhenItWasTurnedOff) {
  LogSettings::logToSystemLog(true);
  LogSettings::logToSystemLog(false);

  log(1, "a line");

  EXPECT_THAT(systemLog(), testing::IsEmpty());
}

}  // namespace
}  // namespace zerva
