#include "host/check/CheckCommand.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <exception>
#include <memory>

#include "host/Complaint.h"
#include "host/check/Check.h"
#include "host/check/LibraryLoad.h"
#include "host/check/RuleTable.h"
#include "host/check/TargetOptions.h"

namespace zerva {
namespace {

constexpr double longestSeconds = 1e6;

/** An option that may come again, with one word each time. */
CLI::Option* repeatable(CLI::Option* option, const char* type) {
  return option->type_name(type)->expected(1)->take_all()->allow_extra_args(false);
}

std::vector<std::string> codes() {
  std::vector<std::string> codes;
  for (const Rule& rule : allRules()) codes.emplace_back(rule.code);
  return codes;
}

void addLoad(CLI::App& verb, CheckOptions& options, const TargetOptions& target) {
  auto* load = verb.add_flag("--load", options.load,
                             "Open each library for real too, in a process of its own")
                   ->excludes(target.root)
                   ->excludes(target.bare);
  verb.add_option_function<double>(
          "--load-timeout",
          [&options](double value) {
            options.loadTimeout = std::chrono::milliseconds{std::llround(value * 1000.0)};
          },
          "How long opening one may take; default: 10")
      ->type_name("SECONDS")
      ->check(CLI::Range(0.001, longestSeconds))
      ->needs(load);
}

}  // namespace

void addCheck(CLI::App& app, Verb& verb) {
  CLI::App* command =
      app.add_subcommand("check", "Look directive files over, and start nothing of what they say");
  command->footer(describeCheckExits());
  const auto options = std::make_shared<CheckOptions>();
  auto* files = command->add_option("FILE", options->files, "The directive files");
  command->add_flag("--together", options->together,
                    "The files are those of processes on one bus, with one registry");
  command->add_flag("--strict", options->strict, "Let warnings fail too");
  command->add_flag("--json", options->json, "Write what was found as JSON");
  repeatable(command->add_option_function<std::vector<std::string>>(
                 "--ignore",
                 [options](const std::vector<std::string>& ignored) {
                   options->ignored.insert(ignored.begin(), ignored.end());
                 },
                 "Say nothing of this kind; repeatable"),
             "CODE")
      ->check(CLI::IsMember(codes()).description(""));
  repeatable(command->add_option("--trace", options->traces,
                                 "The trace of a run: tell which interfaces nobody looked up in "
                                 "it; repeatable"),
             "FILE");
  addLoad(*command, *options, addTargetOptions(*command, *options));
  auto* list =
      command->add_flag("--codes", options->listCodes, "List all that can be found, and end");
  command->callback([files, list, options, &verb] {
    if (files->count() == 0 && list->count() == 0) throw CLI::RequiredError("FILE");
    verb = [options] {
      try {
        return static_cast<int>(check(*options));
      } catch (const std::exception& error) {
        // The code of the program for that is the one for files that are not right.
        complain(error.what());
      }
      return static_cast<int>(CheckExit::NotDone);
    };
  });
}

void addLoadLibrary(CLI::App& app, Verb& verb) {
  CLI::App* command = app.add_subcommand("load-library")->group("");
  const auto options = std::make_shared<LoadOptions>();
  command->add_option("LIBRARY", options->library)->required();
  command->add_option("CREATOR", options->creator);
  repeatable(command->add_option("--lib-dir", options->libraryDirectories), "DIR");
  command->callback([options, &verb] { verb = [options] { return openForReal(*options); }; });
}

}  // namespace zerva
