#pragma once

#include <gtest/gtest.h>

#include <string>

#include "framework/Logging.h"
#include "runtime/libLoggingHandler/LogSettings.h"

namespace zerva {

/** Leaves the logger as it found it. Modules are named by the test, since their levels stay. */
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

  const std::string module =
      testing::UnitTest::GetInstance()->current_test_info()->name() + std::string(" Module");
};

}  // namespace zerva
