#pragma once

#include <gtest/gtest.h>

#include <string>

#include "framework/Logging.h"
#include "runtime/libLoggingHandler/LogSettings.h"

namespace zerva {

/** Leaves the logger as it found it. Each test has a module of its own, since levels stay. */
class LoggingTest : public testing::Test {
 protected:
  LoggingTest() { LogSettings::logToStandardError(false); }
  ~LoggingTest() override {
    std::string error;
    LogSettings::logToFile("", error);
    LogSettings::logToSystemLog(false);
    LogSettings::setDefaultLevel(4);
    LogSettings::setLevel(module, 4);
    LogSettings::logToStandardError(true);
  }

  const std::string module = "Module " + std::to_string(++modules_);

 private:
  static inline int modules_ = 0;
};

}  // namespace zerva
