#include "tests/integration/ScenarioRun.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "framework/ZervaVersion.h"
#include "tests/integration/ExpectedLines.h"
#include "tests/support/FileText.h"
#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

std::filesystem::path buildDirectory() { return ZERVA_BUILD_DIRECTORY; }

/** A processor that this process may run on. */
std::string someProcessor() {
  cpu_set_t allowed;
  CPU_ZERO(&allowed);
  sched_getaffinity(0, sizeof allowed, &allowed);
  int processor = 0;
  while (processor < CPU_SETSIZE && !CPU_ISSET(processor, &allowed)) ++processor;
  return std::to_string(processor);
}

std::map<std::string, std::string> names(const std::filesystem::path& folder,
                                         const std::filesystem::path& temporary) {
  const std::filesystem::path build = buildDirectory();
  return {{"<here>", folder},
          {"<temp>", temporary},
          {"<bin>", build / "bin"},
          {"<lib>", build / "lib"},
          {"<cpu>", someProcessor()},
          {"<plugins>", build / "plugins"},
          {"<programs>", build / "tests/programs"},
          {"<examples>", std::filesystem::path(ZERVA_SOURCE_DIRECTORY) / "examples"},
          {"<version>", ZervaVersion()}};
}

int signalNumber(const std::string& name) {
  const std::map<std::string, int> numbers = {
      {"SIGTERM", SIGTERM}, {"SIGINT", SIGINT}, {"SIGHUP", SIGHUP}};
  return numbers.at(name);
}

/** Whether a program's first thread sleeps, and how often it has gone to sleep so far. */
std::optional<std::string> asleep(pid_t program) {
  const std::string task = "/proc/" + std::to_string(program) + "/task/" + std::to_string(program);
  std::ifstream status(task + "/status");
  std::string switches;
  bool sleeps = false;
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("State:")) sleeps = line.find("S (") != std::string::npos;
    if (line.find("ctxt_switches:") != std::string::npos) switches += line;
  }
  return sleeps ? std::optional(switches) : std::nullopt;
}

/** Waits until the program's first thread has not stirred for a number of looks. */
bool waitUntilItHangs(pid_t program) {
  constexpr int looks = 50;
  std::optional<std::string> last;
  int unchanged = 0;
  return waitUntil([&] {
    const std::optional<std::string> now = asleep(program);
    unchanged = now && now == last ? unchanged + 1 : 0;
    last = now;
    return unchanged == looks;
  });
}

/** The rest of a log line that has five: the registry's invoker was found. */
bool tellsOfTheInvoker(const std::string& line) {
  return line.find("Service Registry Invoker created:") != std::string::npos ||
         line.starts_with("       Created from ") || line.starts_with("       Supporting ");
}

/**
 * Leaves out what every process says of the registry's invoker, and those without a registry of its
 * absence; some scenarios look at that, the others are about something else.
 */
std::string withoutRegistryLines(const std::string& text) {
  std::istringstream lines(text);
  std::string rest;
  for (std::string line; std::getline(lines, line);) {
    if (line.find("cannot get svcRegistry interface!") == std::string::npos &&
        line.find("'service registry invoker'") == std::string::npos &&
        line.find(" while starting, see the log") == std::string::npos &&
        !tellsOfTheInvoker(line)) {
      rest += line + "\n";
    }
  }
  return rest;
}

}  // namespace

ScenarioRun::ScenarioRun(const std::filesystem::path& folder)
    : scenario_(folder, names(folder, temporary_.path())) {}

void ScenarioRun::run() {
  for (const ScenarioStep& step : scenario_.steps()) {
    SCOPED_TRACE(step.verb + ": " + step.argument);
    perform(step);
    if (testing::Test::HasFatalFailure()) return;
  }
  ASSERT_NE(program_, nullptr) << "the scenario starts nothing";
  checkOutput("stdout", program_->output());
  checkOutput("stderr", program_->errors());
  EXPECT_TRUE(program_->survivors().empty()) << "something is left running";
  EXPECT_TRUE(ownBuses().empty()) << "a bus is left behind";
}

/** The directories that hosts have made for their buses. */
std::vector<std::string> ScenarioRun::ownBuses() const {
  std::vector<std::string> found;
  for (const auto& entry : std::filesystem::directory_iterator(temporary_.path())) {
    const std::string name = entry.path().filename();
    if (name.starts_with("zerva-bus-")) found.push_back(name);
  }
  return found;
}

void ScenarioRun::perform(const ScenarioStep& step) {
  if (step.verb == "arguments") {
    start(step.argument);
  } else if (step.verb == "wait-output") {
    ASSERT_TRUE(program_->waitForOutput(step.argument)) << program_->output() << program_->errors();
  } else if (step.verb == "wait-errors") {
    ASSERT_TRUE(program_->waitForErrors(step.argument)) << program_->output() << program_->errors();
  } else if (step.verb == "errors-without") {
    EXPECT_EQ(program_->errors().find(step.argument), std::string::npos) << program_->errors();
  } else if (step.verb == "wait-until-it-hangs") {
    ASSERT_TRUE(waitUntilItHangs(program_->id())) << step.argument;
  } else if (step.verb == "signal") {
    program_->signal(signalNumber(step.argument));
  } else if (step.verb == "exit") {
    ASSERT_EQ(program_->wait(), std::stoi(step.argument))
        << program_->output() << program_->errors();
  } else {
    prepare(step);
  }
}

void ScenarioRun::prepare(const ScenarioStep& step) {
  if (step.verb == "through") {
    through_ = Scenario::words(step.argument);
  } else if (step.verb == "through-as-root") {
    if (geteuid() == 0) through_ = Scenario::words(step.argument);
  } else if (step.verb == "environment") {
    const std::size_t equals = step.argument.find('=');
    environment_[step.argument.substr(0, equals)] = step.argument.substr(equals + 1);
  } else if (step.verb == "directory") {
    directory_ = step.argument;
  } else if (step.verb == "registry-lines") {
    showsRegistry_ = true;
  } else if (step.verb == "generate") {
    generate(step.argument);
  } else if (step.verb == "make-unreadable") {
    writeFile(step.argument, "");
    ASSERT_EQ(chmod(step.argument.c_str(), 0), 0);
  } else if (step.verb == "make-pipe") {
    ASSERT_EQ(mkfifo(step.argument.c_str(), 0600), 0);
  } else {
    throw std::runtime_error("no such step: " + step.verb);
  }
}

void ScenarioRun::start(const std::string& arguments) {
  std::vector<std::string> command = through_;
  command.push_back(buildDirectory() / "bin/zerva");
  for (const std::string& word : Scenario::words(arguments)) command.push_back(word);
  const std::string program = command.front();
  command.erase(command.begin());
  // Programs of the build are found by their names; nothing is coloured.
  environment_["PATH"] = (buildDirectory() / "bin").string() + ":" +
                         (buildDirectory() / "tests/programs").string() +
                         ":/usr/sbin:/usr/bin:/sbin:/bin";
  // No bus but the scenario's own, and none is left in the user's directory.
  environment_.try_emplace("ZERVA_BUS", "");
  environment_.try_emplace("XDG_RUNTIME_DIR", temporary_.path());
  program_ = std::make_unique<ChildProcess>(program, command, environment_, directory_);
}

/** "COUNT LINE": so many lines, with <n> as their number, in the file generated.directives. */
void ScenarioRun::generate(const std::string& argument) {
  const std::size_t blank = argument.find(' ');
  const int count = std::stoi(argument.substr(0, blank));
  std::string text;
  for (int number = 1; number <= count; ++number) {
    std::string line = argument.substr(blank + 1);
    for (std::size_t at; (at = line.find("<n>")) != std::string::npos;) {
      line.replace(at, 3, std::to_string(number));
    }
    text += line + "\n";
  }
  temporary_.write("generated.directives", text);
}

void ScenarioRun::checkOutput(const std::string& file, const std::string& written) const {
  const std::string rest = showsRegistry_ ? written : withoutRegistryLines(written);
  if (scenario_.expects(file)) {
    const std::string difference = compareLines(scenario_.expected(file), rest);
    EXPECT_TRUE(difference.empty()) << file << ", " << difference;
  }
  for (const std::string& among : scenario_.inBetween(file)) {
    const std::string difference = lookForLines(scenario_.expected(among), rest);
    EXPECT_TRUE(difference.empty()) << among << ", " << difference;
  }
}

}  // namespace zerva
