#include "host/trace/TraceVerbs.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "host/trace/Advice.h"
#include "host/trace/Comparison.h"
#include "host/trace/RunModelBuilder.h"
#include "host/trace/TimelineChart.h"
#include "host/trace/TimelineJson.h"
#include "host/trace/TraceReader.h"
#include "host/trace/TraceResult.h"

namespace zerva {
namespace {

constexpr int kRegressed = 1;

constexpr const char* kExitCodes =
    "Exit codes:\n"
    "  0  done\n"
    "  2  a trace cannot be read, the result cannot be written, the command line was not\n"
    "     understood, or an unexpected error, told on standard error\n";
constexpr const char* kDiffExitCodes =
    "Exit codes:\n"
    "  0  nothing became slower than allowed\n"
    "  1  something did, a service does not come up any more, or the second start was cut off\n"
    "  2  a trace cannot be read, the first start was cut off, the command line was not\n"
    "     understood, or an unexpected error, told on standard error\n";

void addTimeline(CLI::App& app, Verb& chosen) {
  struct Options {
    std::string trace;
    std::string output;
    bool json = false;
    bool traceEvents = false;
  };
  const auto options = std::make_shared<Options>();
  CLI::App* verb = app.add_subcommand(
      "timeline", "Draw a trace's start and stop: a row for each service, as an SVG picture");
  verb->footer(kExitCodes);
  verb->add_option("TRACE", options->trace, "What `run --trace` wrote")
      ->required()
      ->type_name("FILE");
  addTraceOutput(*verb, options->output);
  CLI::Option* json = verb->add_flag("--json", options->json, "JSON instead of a picture");
  verb->add_flag("--trace-events", options->traceEvents,
                 "The format that browsers' viewers of traces open, instead of a picture")
      ->excludes(json);
  verb->callback([options, &chosen] {
    chosen = [options] {
      return guardedTraceWork([&] {
        const std::vector<TraceLine> lines = readTraceFile(options->trace);
        const RunModel run = RunModelBuilder(options->trace).build(lines);
        return writeTraceResult(options->json          ? timelineJson(run)
                                : options->traceEvents ? timelineTraceEvents(run, lines)
                                                       : timelineSvg(run),
                                options->output);
      });
    };
  });
}

/** Reads "10%" or "10". */
CLI::Validator percentage(double& value) {
  return CLI::Validator(
      [&value](const std::string& text) {
        std::string number = text;
        if (number.ends_with('%')) number.pop_back();
        const bool read = CLI::detail::lexical_cast(number, value);
        const bool good = read && std::isfinite(value) && value >= 0;
        return good ? std::string() : "'" + text + "' is no percentage";
      },
      "PERCENT");
}

/** Takes a number of milliseconds, fractions allowed. */
void addMilliseconds(CLI::App& verb, const std::string& name, std::int64_t& nanoseconds,
                     const std::string& what) {
  constexpr double most = 1e9;
  verb.add_option_function<double>(
          name, [&nanoseconds](double value) { nanoseconds = std::llround(value * 1e6); }, what)
      ->check(CLI::Range(0.0, most))
      ->type_name("MS");
}

void addDiff(CLI::App& app, Verb& chosen) {
  struct Options {
    std::string before;
    std::string after;
    std::string percent;
    ComparisonLimits limits;
    bool json = false;
  };
  const auto options = std::make_shared<Options>();
  CLI::App* verb =
      app.add_subcommand("diff", "Compare two starts, and fail when one became slower");
  verb->footer(kDiffExitCodes);
  verb->add_option("BEFORE", options->before, "The trace of the start as it was")
      ->required()
      ->type_name("FILE");
  verb->add_option("AFTER", options->after, "The trace of the start as it is now")
      ->required()
      ->type_name("FILE");
  verb->add_option("--max-regress", options->percent,
                   "How much slower the start and each service may become; default: 10%")
      ->check(percentage(options->limits.percent));
  addMilliseconds(*verb, "--noise", options->limits.noise,
                  "Differences up to this many milliseconds do not count; default: 1");
  verb->add_flag("--json", options->json, "JSON instead of text");
  verb->callback([options, &chosen] {
    chosen = [options] {
      return guardedTraceWork([&] {
        const Comparison comparison =
            compareStarts(readRun(options->before), readRun(options->after), options->limits);
        const int written = writeTraceResult(
            options->json ? comparisonJson(comparison) : comparisonText(comparison), "");
        if (written != kTraceDone) return written;
        return comparison.regressed() ? kRegressed : kTraceDone;
      });
    };
  });
}

void addAdvise(CLI::App& app, Verb& chosen) {
  struct Options {
    std::vector<std::string> traces;
    AdviceLimits limits;
    bool json = false;
  };
  const auto options = std::make_shared<Options>();
  CLI::App* verb = app.add_subcommand(
      "advise", "Say which services could be lazy, and which lazy ones should not be");
  verb->footer(kExitCodes);
  verb->add_option("TRACE", options->traces, "What `run --trace` wrote, one for each process")
      ->required()
      ->type_name("FILE");
  addMilliseconds(*verb, "--at-least", options->limits.saving,
                  "What a change has to save for a service to be named; default: 0.1");
  addMilliseconds(*verb, "--soon", options->limits.soon,
                  "What is asked for within this time after the start is needed for it; default: "
                  "500");
  verb->add_flag("--json", options->json, "JSON instead of text");
  verb->callback([options, &chosen] {
    chosen = [options] {
      return guardedTraceWork([&] {
        const std::vector<Advice> advice = adviceFor(readTraces(options->traces), options->limits);
        return writeTraceResult(options->json ? adviceJson(advice) : adviceText(advice), "");
      });
    };
  });
}

}  // namespace

void addTraceVerbs(CLI::App& app, Verb& chosen) {
  addTimeline(app, chosen);
  addDiff(app, chosen);
  addAdvise(app, chosen);
}

}  // namespace zerva
