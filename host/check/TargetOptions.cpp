#include "host/check/TargetOptions.h"

#include <CLI/CLI.hpp>

#include "host/check/ElfFile.h"

namespace zerva {

TargetOptions addTargetOptions(CLI::App& verb, CheckOptions& options) {
  auto* bare = verb.add_flag_callback(
      "--no-libraries", [&options] { options.libraries = false; },
      "Look at the files only, not at the libraries and programs that they name");
  verb.add_option("--lib-dir", options.libraryDirectories,
                  "Where libraries named without a slash are searched first, as for run; "
                  "repeatable")
      ->type_name("DIR")
      ->expected(1)
      ->take_all()
      ->allow_extra_args(false);
  auto* root = verb.add_option("--sysroot", options.root,
                               "The files are for the machine whose tree is in this directory: "
                               "every path, also that of --lib-dir, is one of that machine")
                   ->type_name("DIR")
                   ->check(CLI::Validator(CLI::ExistingDirectory).description(""));
  verb.add_option("--machine", options.machine,
                  "The kind of that machine; default: that of the programs in its tree, or this "
                  "one's")
      ->type_name("KIND")
      ->check(CLI::IsMember(elfKindNames()));
  return {bare, root};
}

}  // namespace zerva
