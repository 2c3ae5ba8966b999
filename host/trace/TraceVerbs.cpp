#include "host/trace/TraceVerbs.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "host/trace/Advice.h"
#include "host/trace/CallGraph.h"
#include "host/trace/Comparison.h"
#include "host/trace/GraphChart.h"
#include "host/trace/RunModelBuilder.h"
#include "host/trace/TimelineChart.h"
#include "host/trace/TimelineJson.h"
#include "host/trace/TraceReader.h"

namespace zerva {
namespace {

constexpr int kDone = 0;
constexpr int kRegressed = 1;
constexpr int kFailed = 2;

constexpr const char* kExitCodes =
    "Exit codes:\n"
    "  0  done\n"
    "  2  a trace cannot be read, the result cannot be written, or the command line was not\n"
    "     understood\n";
constexpr const char* kDiffExitCodes =
    "Exit codes:\n"
    "  0  nothing became slower than allowed\n"
    "  1  something did, a service does not come up any more, or the second start was cut off\n"
    "  2  a trace cannot be read, the first start was cut off, or the command line was not\n"
    "     understood\n";

/** Does what may fail of a file. @returns the exit code. */
int guarded(const std::function<int()>& work) {
  try {
    return work();
  } catch (const TraceError& error) {
    std::fprintf(stderr, "%s\n", error.what());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zerva: %s\n", error.what());
  }
  return kFailed;
}

/** @param path empty or "-" for standard output. */
int write(const std::string& text, const std::string& path) {
  if (path.empty() || path == "-") {
    std::cout << text << std::flush;
    return std::cout ? kDone : kFailed;
  }
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << text << std::flush;
  if (out) return kDone;
  std::fprintf(stderr, "zerva: cannot write %s: %s\n", path.c_str(),
               std::generic_category().message(errno).c_str());
  return kFailed;
}

std::vector<RunModel> readAll(const std::vector<std::string>& paths) {
  std::vector<RunModel> runs;
  for (const std::string& path : paths) {
    runs.push_back(readRun(path));
    if (const std::int64_t lost = runs.back().lost; lost > 0) {
      std::fprintf(stderr, "%s: %lld events are missing\n", path.c_str(),
                   static_cast<long long>(lost));
    }
  }
  return runs;
}

CLI::Option* addOutput(CLI::App& verb, std::string& path) {
  return verb.add_option("-o,--output", path, "Where the result goes; default: standard output")
      ->type_name("FILE");
}

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
  addOutput(*verb, options->output);
  CLI::Option* json = verb->add_flag("--json", options->json, "JSON instead of a picture");
  verb->add_flag("--trace-events", options->traceEvents,
                 "The format that browsers' viewers of traces open, instead of a picture")
      ->excludes(json);
  verb->callback([options, &chosen] {
    chosen = [options] {
      return guarded([&] {
        const std::vector<TraceLine> lines = readTraceFile(options->trace);
        const RunModel run = RunModelBuilder(options->trace).build(lines);
        return write(options->json          ? timelineJson(run)
                     : options->traceEvents ? timelineTraceEvents(run, lines)
                                            : timelineSvg(run),
                     options->output);
      });
    };
  });
}

void addGraph(CLI::App& app, Verb& chosen) {
  struct Options {
    std::vector<std::string> traces;
    std::string output;
    bool json = false;
    bool registry = false;
  };
  const auto options = std::make_shared<Options>();
  CLI::App* verb = app.add_subcommand(
      "graph", "Draw who called whom, in one process or several, as an SVG picture");
  verb->footer(kExitCodes);
  verb->add_option("TRACE", options->traces, "What `run --trace` wrote, one for each process")
      ->required()
      ->type_name("FILE");
  addOutput(*verb, options->output);
  verb->add_flag("--registry", options->registry, "With the calls of the service registry");
  verb->add_flag("--json", options->json, "JSON instead of a picture");
  verb->callback([options, &chosen] {
    chosen = [options] {
      return guarded([&] {
        const CallGraph graph = callGraphOf(readAll(options->traces), options->registry);
        return write(options->json ? callGraphJson(graph) : callGraphSvg(graph), options->output);
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
      return guarded([&] {
        const Comparison comparison =
            compareStarts(readRun(options->before), readRun(options->after), options->limits);
        const int written =
            write(options->json ? comparisonJson(comparison) : comparisonText(comparison), "");
        if (written != kDone) return written;
        return comparison.regressed() ? kRegressed : kDone;
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
      return guarded([&] {
        const std::vector<Advice> advice = adviceFor(readAll(options->traces), options->limits);
        return write(options->json ? adviceJson(advice) : adviceText(advice), "");
      });
    };
  });
}

}  // namespace

void addTraceVerbs(CLI::App& app, Verb& chosen) {
  addTimeline(app, chosen);
  addGraph(app, chosen);
  addDiff(app, chosen);
  addAdvise(app, chosen);
}

}  // namespace zerva
