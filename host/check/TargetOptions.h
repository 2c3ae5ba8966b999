#pragma once

#include "host/check/CheckOptions.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace zerva {

/** The options that others depend on. */
struct TargetOptions {
  /** That which leaves libraries alone. */
  CLI::Option* bare;
  /** That which names another machine's tree. */
  CLI::Option* root;
};

/**
 * The options that say for which machine files are read, and where it has its libraries.
 *
 * @param options where they go; outlives the verb.
 */
TargetOptions addTargetOptions(CLI::App& verb, CheckOptions& options);

}  // namespace zerva
