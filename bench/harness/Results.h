#pragma once

#include <deque>
#include <string>

#include "bench/harness/Statistics.h"

namespace zerva::bench {

/** What one side of a row was measured at. */
struct Cell {
  /** "ours", or what it is compared with. */
  std::string side;
  Rounds rounds;
};

/** Figures that stand beside each other. */
struct Row {
  std::string name;
  /** Where it stands in a chart that grows along a number; 0 in others. */
  double x;
  std::vector<Cell> cells;
};

/** Rows with one unit; a chart is drawn of each. */
struct Table {
  std::string id;
  std::string title;
  std::string unit;
  /** What the rows grow with; empty when they are just beside each other. */
  std::string along;
  std::deque<Row> rows;

  /** Adds cells to the row of that name, or makes it. */
  void add(const std::string& name, const std::vector<Cell>& cells, double x = 0);
};

/** An aim and how it went. */
struct Aim {
  enum class Limit { AtMost, AtLeast };

  std::string name;
  /** What was measured, a value for each round. */
  Rounds figure;
  Limit limit;
  double value;
  /** Empty for a ratio. */
  std::string unit;

  bool met() const;
  /** @returns the line that tells of it. */
  std::string line() const;
};

/** All that a run gives. */
class Results {
 public:
  /** @returns the table with that id, which is made when it is asked for first. */
  Table& table(const std::string& id, const std::string& title, const std::string& unit,
               const std::string& along = "");

  /** Notes an aim. */
  const Aim& add(Aim aim);

  /**
   * Writes everything down.
   *
   * @throws std::runtime_error when the file cannot be written.
   */
  void writeJson(const std::string& path) const;

 private:
  std::deque<Table> tables_;
  std::deque<Aim> aims_;
};

}  // namespace zerva::bench
