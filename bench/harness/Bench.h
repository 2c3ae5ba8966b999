#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bench/harness/Isolated.h"
#include "bench/harness/Results.h"

namespace zerva::bench {

/** One of the things that are compared. */
struct Side {
  std::string name;
  /** Gives the figures of one round. Runs in a process of its own. */
  std::function<Figures()> measure;
};

/** What the rounds of some sides gave. */
class Series {
 public:
  explicit Series(std::vector<std::string> names) : names_(std::move(names)) {}

  void add(std::size_t side, const Figures& figures);

  /** @returns one figure of a side, a value for each round. */
  Rounds figure(std::size_t side, std::size_t which = 0) const;

  /** @returns one figure of all sides, as a table shows it. */
  std::vector<Cell> cells(std::size_t which = 0) const;

 private:
  std::vector<std::string> names_;
  std::vector<std::vector<Figures>> rounds_;
};

/** How much is measured. */
struct BenchOptions {
  /** As little as shows that everything works; no figure means anything then. */
  bool smoke = false;
  int rounds = 7;
};

/** What a benchmark is handed: how much it is to do, and where its results go. */
class Bench {
 public:
  explicit Bench(BenchOptions options) : options_(options) {}

  bool smoke() const { return options_.smoke; }

  /** @returns the first number, or in a smoke run the second. */
  int sized(int full, int smoke) const { return options_.smoke ? smoke : full; }

  /**
   * Measures each side once in each round, the first side first in one round and last in the next,
   * after one round that does not count.
   */
  Series run(int processors, const std::vector<Side>& sides) const;

  /** As `Results::table`. */
  Table& table(const std::string& id, const std::string& title, const std::string& unit,
               const std::string& along = "");

  /** Notes an aim and prints its line. */
  void aimAtMost(const std::string& name, const Rounds& figure, double limit,
                 const std::string& unit = "");
  void aimAtLeast(const std::string& name, const Rounds& figure, double limit,
                  const std::string& unit = "");

  const Results& results() const { return results_; }

 private:
  void aim(const std::string& name, const Rounds& figure, Aim::Limit limit, double value,
           const std::string& unit);

  const BenchOptions options_;
  Results results_;
};

/** A benchmark that can be asked for by its name. */
struct NamedBench {
  const char* name;
  const char* what;
  void (*run)(Bench&);
};

/** Runs what the command line asks for. @returns the exit code. */
int benchMain(int argc, const char* const* argv, const std::vector<NamedBench>& all);

}  // namespace zerva::bench
