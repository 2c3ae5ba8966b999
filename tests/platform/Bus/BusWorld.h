#pragma once

#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "runtime/libClientUtils/ReplyTimeout.h"
#include "runtime/libClientUtils/bus/Bus.h"
#include "tests/platform/Libraries.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/FileText.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/WaitUntil.h"

namespace zerva {

/** Another process on a bus, and its control channel. */
class BusPartner {
 public:
  BusPartner(const std::filesystem::path& bus, std::string control)
      : control_(std::move(control)),
        process_(programDirectory() / "bus_partner", {bus.string(), control_}) {
    EXPECT_TRUE(process_.waitForOutput("ready")) << process_.errors();
  }

  ChildProcess& process() { return process_; }

  /** Has a command carried out. @returns what it said. */
  std::string tell(const std::string& command) const {
    const Answer answer = ask(control_, command);
    EXPECT_TRUE(answer.ok) << answer.error;
    return answer.data;
  }

  /** Stops the process, and waits until none of its threads does anything any more. */
  void stop() { EXPECT_TRUE(process_.stop()); }

  /** As the process is named in errors. */
  std::string name() const { return "process " + std::to_string(process_.id()); }

 private:
  const std::string control_;
  ChildProcess process_;
};

/** A bus of this process and of partners. */
class BusWorld : public testing::Test {
 protected:
  ~BusWorld() override { world.end(); }

  /** How many files of a kind are in the bus directory. */
  std::size_t files(const std::string& suffix) const {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
      count += entry.path().string().ends_with(suffix) ? 1 : 0;
    }
    return count;
  }

  /** This process serves what a function answers. */
  void serve(const std::string& name, Mode mode, ScriptedService::Handler handler) {
    services.push_back(std::make_unique<ScriptedService>(std::move(handler)));
    world.run(services.back().get(), name, mode);
  }

  const TempDirectory directory;
  const std::filesystem::path path = directory.file("bus");
  std::vector<std::unique_ptr<ScriptedService>> services;
  ExecutorWorld world{16};
};

/** Sets the reply time-out for one test. */
class ReplyTimeoutOf {
 public:
  explicit ReplyTimeoutOf(std::chrono::milliseconds timeout) { setReplyTimeout(timeout); }
  ~ReplyTimeoutOf() { setReplyTimeout(before_); }
  ReplyTimeoutOf(const ReplyTimeoutOf&) = delete;
  ReplyTimeoutOf& operator=(const ReplyTimeoutOf&) = delete;

 private:
  const std::chrono::milliseconds before_ = replyTimeout();
};

}  // namespace zerva
