#include "host/CommandLine.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <iostream>
#include <map>
#include <sstream>

#include "framework/ZervaVersion.h"
#include "host/Complaint.h"
#include "host/Printing.h"
#include "host/check/CheckCommand.h"
#include "host/completion/Completion.h"
#include "host/completion/DescribeCommand.h"
#include "host/explain/ExplainCommand.h"
#include "host/graph/GraphCommand.h"
#include "host/live/LiveVerbs.h"
#include "host/skeleton/NewService.h"
#include "host/trace/TraceVerbs.h"

namespace zerva {
namespace {

constexpr double longestSeconds = 1e8;

std::chrono::milliseconds toMilliseconds(double seconds) {
  return std::chrono::milliseconds{std::llround(seconds * 1000.0)};
}

/** Refuses what is no time: negative, not finite, or longer than anybody waits. */
CLI::Validator seconds() {
  return CLI::Validator(
      [](const std::string& text) {
        double value = 0;
        const bool read = CLI::detail::lexical_cast(text, value);
        const bool good = read && std::isfinite(value) && value >= 0 && value <= longestSeconds;
        return good ? std::string() : "'" + text + "' is no number of seconds";
      },
      "SECONDS");
}

/** Reads "MODULE=LEVEL" or "LEVEL"; a module's name may hold blanks. */
LogLevel readLogLevel(const std::string& text) {
  const std::size_t equals = text.rfind('=');
  const std::string number = equals == std::string::npos ? text : text.substr(equals + 1);
  const bool digit = number.size() == 1 && number[0] >= '0' && number[0] <= '9';
  if (!digit || equals == 0) {
    throw CLI::ValidationError("--log", "'" + text +
                                            "' is not LEVEL or MODULE=LEVEL with a level "
                                            "from 0 to 9");
  }
  return {equals == std::string::npos ? std::string() : text.substr(0, equals), number[0] - '0'};
}

constexpr std::chrono::seconds kDefaultAwait{30};

/** Reads "CHANNEL" or "CHANNEL=SECONDS"; a channel's name may hold any character. */
AwaitedChannel readAwaited(const std::string& text) {
  const std::size_t equals = text.rfind('=');
  if (equals == std::string::npos && !text.empty()) return {text, kDefaultAwait};
  const std::string number = text.substr(equals + 1);
  double value = 0;
  if (text.empty() || equals == 0 || !seconds()(number).empty() ||
      !CLI::detail::lexical_cast(number, value)) {
    throw CLI::ValidationError("--await", "'" + text + "' is not CHANNEL or CHANNEL=SECONDS");
  }
  return {text.substr(0, equals), toMilliseconds(value)};
}

/** For an option that may come again, with one word each time: the next may be the file already. */
void repeatable(CLI::Option* option, const char* type) {
  option->type_name(type)->expected(1)->take_all()->allow_extra_args(false);
}

/** What others see of a run: the log, the trace, the status. */
void addWhatIsSeen(CLI::App& run, RunOptions& options) {
  repeatable(run.add_option_function<std::vector<std::string>>(
                 "--log",
                 [&](const std::vector<std::string>& levels) {
                   for (const std::string& level : levels) {
                     options.logLevels.push_back(readLogLevel(level));
                   }
                 },
                 "Log level, 0 to 9, of a module or, without MODULE=, of all; repeatable"),
             "[MODULE=]LEVEL");
  run.add_option("--log-file", options.logFile, "Write the log to this file too")
      ->type_name("PATH");
  run.add_option("--trace", options.trace,
                 "Write what happens to this file, for timeline, graph, diff and advise; %p in it "
                 "is the process's id, and then processes that are started write one each, too; "
                 "default: ZERVA_TRACE of the environment")
      ->type_name("FILE");
  run.add_flag(
      "--status", options.status,
      "Let status, watch and graph --live see how it is, on the bus, and the hosts that it "
      "starts, too; default: ZERVA_STATUS of the environment");
}

/** What is around a run: libraries, and other processes. */
void addSurroundings(CLI::App& run, RunOptions& options) {
  repeatable(run.add_option("--lib-dir", options.libraryDirectories,
                            "Where libraries named without a slash are searched first; repeatable; "
                            "default: the directory lib beside the executable's own"),
             "DIR");
  run.add_option("--bus", options.bus,
                 "Directory through which processes reach each other's channels; default: that of "
                 "ZERVA_BUS in the environment, else a new one for this process and those that it "
                 "starts")
      ->type_name("DIR");
  repeatable(run.add_option_function<std::vector<std::string>>(
                 "--await",
                 [&](const std::vector<std::string>& channels) {
                   for (const std::string& channel : channels) {
                     options.awaited.push_back(readAwaited(channel));
                   }
                 },
                 "Wait before the start until another process serves this channel, at most so "
                 "long, or 30 seconds; repeatable"),
             "CHANNEL[=SECONDS]");
}

/** The verb `run`: its words, and where they go. */
void addRun(CLI::App& app, RunOptions& options) {
  CLI::App* run = app.add_subcommand("run", "Bring up what a directive file says, until a signal");
  run->footer(
      "Ends in order on SIGTERM, SIGINT or SIGHUP; a second signal ends a start or a stop "
      "that hangs.\n\n" +
      describeExitCodes());
  run->add_option("FILE", options.file, "The directive file")->required();
  run->add_option("VERSION", options.version,
                  "What the host that started this one appends: its version; only shown");
  run->add_option_function<double>(
         "--for", [&](double value) { options.duration = toMilliseconds(value); },
         "End in order after this time, fractions allowed")
      ->check(seconds());
  addWhatIsSeen(*run, options);
  addSurroundings(*run, options);
  run->add_flag_callback(
      "--no-check", [&] { options.check = false; }, "Do not look the file over first");
  run->add_option_function<double>(
         "--stop-timeout", [&](double value) { options.stopTimeout = toMilliseconds(value); },
         "How long to wait at the end for requests under way, and for started processes; "
         "default: 10")
      ->check(seconds());
  run->add_option_function<double>(
         "--reply-timeout", [&](double value) { options.replyTimeout = toMilliseconds(value); },
         "How long a request waits for its answer")
      ->check(seconds());
}

/** The verb `new`. */
void addNew(CLI::App& app, NewServiceOptions& options, Verb& verb) {
  CLI::App* make = app.add_subcommand("new", "Write what something new begins with");
  make->require_subcommand(1);
  make->footer(describeNewExitCodes());
  CLI::App* service = make->add_subcommand(
      "service", "Write a folder with a service that builds and runs as it stands");
  service->footer(describeNewExitCodes());
  service->add_option("NAME", options.name, "Its name, as in TideGauge")->required();
  service->add_option("--in", options.in, "Where to make the folder; default: the current one")
      ->type_name("DIR");
  service->callback([&] { verb = [options] { return newService(options); }; });
}

/** The verb `completion`, which knows the verbs and options that are there by asking the parser. */
void addCompletion(CLI::App& app, std::string& shell, Verb& verb) {
  using Writer = std::string (*)(const CommandDescription&);
  static const std::map<std::string, Writer> writers{
      {"bash", &bashCompletion}, {"fish", &fishCompletion}, {"zsh", &zshCompletion}};
  CLI::App* completion =
      app.add_subcommand("completion", "Print what completes this command in a shell");
  completion->footer(
      "Exit codes:\n  0  it was printed\n  1  it could not be printed\n  2  the command line was "
      "not understood\n");
  completion->add_option("SHELL", shell, "bash, fish or zsh")
      ->required()
      ->check(CLI::IsMember(writers));
  completion->callback([&] {
    verb = [text = writers.at(shell)(describeCommand(app))] { return print(text) ? 0 : 1; };
  });
}

}  // namespace

Wanted readCommandLine(int argc, const char* const* argv) {
  CLI::App app{"Runs the services of a process as a directive file says"};
  RunOptions options;
  NewServiceOptions newOptions;
  std::string shell;
  Verb verb;
  app.name("zerva");
  app.set_version_flag("--version", "zerva " + ZervaVersion());
  app.require_subcommand(1);
  app.footer(describeExitCodes());
  addRun(app, options);
  addCheck(app, verb);
  addLoadLibrary(app, verb);
  addExplain(app, verb);
  addNew(app, newOptions, verb);
  addTraceVerbs(app, verb);
  addGraph(app, verb);
  addStatus(app, verb);
  addWatch(app, verb);
  addCall(app, verb);
  addCompletion(app, shell, verb);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    std::ostringstream errors;
    const int code = app.exit(error, std::cout, errors);
    if (code == 0) return ExitCode::WentDown;
    std::string text = errors.str();
    if (!text.empty() && text.back() == '\n') text.pop_back();
    printError("", text);
    return ExitCode::Usage;
  }
  if (verb) return verb;
  return options;
}

}  // namespace zerva
