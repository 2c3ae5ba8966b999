#include "host/graph/GraphCommand.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/Complaint.h"
#include "host/graph/LiveGraph.h"
#include "host/live/LiveBus.h"
#include "host/live/LiveCommandLine.h"
#include "host/live/LiveExit.h"
#include "host/trace/GraphChart.h"
#include "host/trace/TraceResult.h"

namespace zerva {
namespace {

constexpr const char* kExitCodes =
    "Exit codes:\n"
    "  0  done\n"
    "  2  a trace cannot be read, the result cannot be written, the command line was not\n"
    "     understood, or an unexpected error, told on standard error\n"
    "With --live besides:\n"
    "  3  a process did not answer; the picture is without what it calls\n"
    "  4  no process of the bus tells what it calls; nothing was drawn\n"
    " 10  there is no bus, or it cannot be used\n";

struct Options {
  std::vector<std::string> traces;
  std::string output;
  std::string bus;
  std::chrono::milliseconds timeout{2000};
  bool live = false;
  bool json = false;
  bool registry = false;
};

int write(const CallGraph& graph, const Options& options) {
  return writeTraceResult(options.json ? callGraphJson(graph) : callGraphSvg(graph),
                          options.output);
}

/** @returns null when there is none; then it was told why. */
std::unique_ptr<LiveBus> join(const Options& options) {
  try {
    return std::make_unique<LiveBus>(options.bus, options.timeout);
  } catch (const std::runtime_error& error) {
    complain(error.what());
    return nullptr;
  }
}

/** Draws what the processes of the bus tell now. */
int drawLive(const Options& options) {
  const auto bus = join(options);
  if (bus == nullptr) return static_cast<int>(LiveExit::NoBus);
  const std::vector<Answer> answers = askAll(*bus, Question::StatusAndCalls);
  for (const Answer& answer : answers) {
    if (answer.calls) continue;
    complain("process " + std::to_string(answer.process) + ", " + whatIsMissing(answer));
  }
  const auto tells = [](const Answer& answer) { return answer.tells; };
  if (std::none_of(answers.begin(), answers.end(), tells)) {
    complain("no process of the bus tells what it calls: start them with run --status");
    return static_cast<int>(LiveExit::Unknown);
  }
  const int written = write(liveCallGraph(answers, options.registry), options);
  if (written != kTraceDone) return written;
  const bool silent = std::any_of(answers.begin(), answers.end(), [](const Answer& answer) {
    return answer.tells && !answer.calls;
  });
  return silent ? static_cast<int>(LiveExit::Trouble) : kTraceDone;
}

int draw(const Options& options) {
  return guardedTraceWork([&] {
    if (options.live) return drawLive(options);
    return write(callGraphOf(readTraces(options.traces), options.registry), options);
  });
}

void addWhatIsRead(CLI::App& verb, Options& options) {
  CLI::Option* traces =
      verb.add_option("TRACE", options.traces, "What `run --trace` wrote, one for each process")
          ->type_name("FILE");
  CLI::Option* live = verb.add_flag(
      "--live", options.live,
      "Ask the processes of a bus what they called so far, those that were started by run "
      "--status, instead of reading traces");
  live->excludes(traces);
  addBusOption(verb, options.bus)->needs(live);
  addSeconds(verb, "--timeout", options.timeout,
             "How long a process has for each of its two answers; default: 2")
      ->needs(live);
}

}  // namespace

void addGraph(CLI::App& app, Verb& verb) {
  const auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand(
      "graph", "Draw who called whom, in one process or several, as an SVG picture");
  command->footer(kExitCodes);
  addWhatIsRead(*command, *options);
  addTraceOutput(*command, options->output);
  command->add_flag("--registry", options->registry, "With the calls of the service registry");
  command->add_flag("--json", options->json, "JSON instead of a picture");
  command->callback([options, &verb] {
    if (options->traces.empty() && !options->live) {
      throw CLI::RequiredError("TRACE or --live");
    }
    verb = [options] { return draw(*options); };
  });
}

}  // namespace zerva
