#include "bench/harness/Bench.h"

#include <cstdio>
#include <stdexcept>

namespace zerva::bench {

namespace {

std::string withWordSize(const std::string& name) {
  return name + ", " + std::to_string(sizeof(void*) * 8) + "-bit";
}

}  // namespace

void Series::add(std::size_t side, const Figures& figures) {
  if (rounds_.size() <= side) rounds_.resize(side + 1);
  rounds_[side].push_back(figures);
}

Rounds Series::figure(std::size_t side, std::size_t which) const {
  Rounds values;
  for (const Figures& figures : rounds_.at(side)) values.push_back(figures.at(which));
  return values;
}

std::vector<Cell> Series::cells(std::size_t which) const {
  std::vector<Cell> cells;
  for (std::size_t i = 0; i < names_.size(); ++i) cells.push_back({names_[i], figure(i, which)});
  return cells;
}

Series Bench::run(int processors, const std::vector<Side>& sides) const {
  if (!options_.smoke && processorsHere() < processors) {
    throw std::runtime_error("it needs " + std::to_string(processors) + " processors");
  }
  std::vector<std::string> names;
  names.reserve(sides.size());
  for (const Side& side : sides) names.push_back(side.name);
  Series series(names);
  // Files that are read for the first time are read in the round that does not count.
  for (int round = options_.smoke ? 0 : -1; round < options_.rounds; ++round) {
    for (std::size_t i = 0; i < sides.size(); ++i) {
      const std::size_t side = round % 2 == 0 ? i : sides.size() - 1 - i;
      const Figures figures = measureApart(processors, sides[side].measure);
      if (round >= 0) series.add(side, figures);
    }
  }
  return series;
}

Table& Bench::table(const std::string& id, const std::string& title, const std::string& unit,
                    const std::string& along) {
  return results_.table(id, title, unit, along);
}

void Bench::aim(const std::string& name, const Rounds& figure, Aim::Limit limit, double value,
                const std::string& unit) {
  // Said when they are measured, and not judged when they mean nothing.
  const Aim& noted = results_.add({withWordSize(name), figure, limit, value, unit});
  std::printf("%s\n",
              options_.smoke ? ("not judged: " + noted.name).c_str() : noted.line().c_str());
  std::fflush(stdout);
}

void Bench::aimAtMost(const std::string& name, const Rounds& figure, double limit,
                      const std::string& unit) {
  aim(name, figure, Aim::Limit::AtMost, limit, unit);
}

void Bench::aimAtLeast(const std::string& name, const Rounds& figure, double limit,
                       const std::string& unit) {
  aim(name, figure, Aim::Limit::AtLeast, limit, unit);
}

}  // namespace zerva::bench
