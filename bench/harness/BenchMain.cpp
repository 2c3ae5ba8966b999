#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "bench/harness/Bench.h"

namespace zerva::bench {

namespace {

struct Wanted {
  BenchOptions options;
  std::string json;
  std::vector<std::string> names;
  bool list = false;
};

constexpr int kSmokeRounds = 2;

/** @returns false when it is not understood. */
bool readWords(int argc, const char* const* argv, Wanted& wanted) {
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    if (word == "--smoke") {
      wanted.options.smoke = true;
      wanted.options.rounds = kSmokeRounds;
    } else if (word == "--list") {
      wanted.list = true;
    } else if (word == "--rounds" && i + 1 < argc) {
      wanted.options.rounds = std::max(1, std::atoi(argv[++i]));
    } else if (word == "--json" && i + 1 < argc) {
      wanted.json = argv[++i];
    } else if (word.rfind("--", 0) == 0) {
      return false;
    } else {
      wanted.names.push_back(word);
    }
  }
  return true;
}

/** @returns whether everything that is asked for is there. */
bool known(const Wanted& wanted, const std::vector<NamedBench>& all) {
  bool good = true;
  for (const std::string& name : wanted.names) {
    if (std::any_of(all.begin(), all.end(), [&](const NamedBench& b) { return b.name == name; })) {
      continue;
    }
    std::fprintf(stderr, "there is no benchmark '%s'\n", name.c_str());
    good = false;
  }
  return good;
}

/** @returns how many could not be measured. */
int runAll(const Wanted& wanted, const std::vector<NamedBench>& all, Bench& bench) {
  int failed = 0;
  for (const NamedBench& one : all) {
    const auto& names = wanted.names;
    if (!names.empty() && std::find(names.begin(), names.end(), one.name) == names.end()) continue;
    std::printf("-- %s, %zu-bit: %s\n", one.name, sizeof(void*) * 8, one.what);
    std::fflush(stdout);
    try {
      one.run(bench);
    } catch (const std::exception& error) {
      std::fprintf(stderr, "%s could not be measured: %s\n", one.name, error.what());
      ++failed;
    }
  }
  return failed;
}

}  // namespace

int benchMain(int argc, const char* const* argv, const std::vector<NamedBench>& all) {
  Wanted wanted;
  if (!readWords(argc, argv, wanted)) {
    std::fprintf(stderr, "usage: %s [--smoke] [--rounds N] [--json FILE] [--list] [NAME...]\n",
                 argv[0]);
    return 2;
  }
  if (wanted.list) {
    for (const NamedBench& one : all) std::printf("%-16s %s\n", one.name, one.what);
    return 0;
  }
  if (!known(wanted, all)) return 2;
  Bench bench(wanted.options);
  const int failed = runAll(wanted, all, bench);
  try {
    if (!wanted.json.empty()) bench.results().writeJson(wanted.json);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  return failed == 0 ? 0 : 1;
}

}  // namespace zerva::bench
