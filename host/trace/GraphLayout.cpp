#include "host/trace/GraphLayout.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace zerva {
namespace {

constexpr double kAbove = 18;
constexpr double kBetweenColumns = 30;
constexpr int kSweeps = 8;
constexpr double kLoosestRow = 900;

/** A box, a label, or the place where a line passes through a column. */
struct Spot {
  std::optional<std::size_t> box;
  std::size_t layer = 0;
  double width = 0;
  double height = 0;
  double y = 0;
  std::vector<std::size_t> left;
  std::vector<std::size_t> right;
};

class Placing {
 public:
  explicit Placing(Layout& layout) : layout_(layout), spotOf_(layout.boxes.size()) {}

  void place() {
    turnRound();
    findLayers();
    makeSpots();
    order();
    findHeights();
    findColumns();
    drawLines();
    placeLonely();
  }

 private:
  /** Turns the lines round that would close a circle. */
  void turnRound() {
    turned_.assign(layout_.lines.size(), false);
    enum class State { New, OnTheWay, Done };
    std::vector<State> states(layout_.boxes.size(), State::New);
    const auto visit = [&](const auto& self, std::size_t box) -> void {
      states[box] = State::OnTheWay;
      for (std::size_t line = 0; line < layout_.lines.size(); ++line) {
        if (layout_.lines[line].from != box) continue;
        const std::size_t to = layout_.lines[line].to;
        if (states[to] == State::OnTheWay) turned_[line] = true;
        if (states[to] == State::New) self(self, to);
      }
      states[box] = State::Done;
    };
    for (std::size_t box = 0; box < states.size(); ++box) {
      if (states[box] == State::New) visit(visit, box);
    }
  }

  std::size_t beginOf(std::size_t line) const {
    return turned_[line] ? layout_.lines[line].to : layout_.lines[line].from;
  }
  std::size_t endOf(std::size_t line) const {
    return turned_[line] ? layout_.lines[line].from : layout_.lines[line].to;
  }

  /**
   * Each box comes after the last one of those that lead to it; between two columns of boxes is one
   * of labels.
   */
  void findLayers() {
    layers_.assign(layout_.boxes.size(), 0);
    lonely_.assign(layout_.boxes.size(), true);
    for (std::size_t line = 0; line < layout_.lines.size(); ++line) {
      lonely_[beginOf(line)] = lonely_[endOf(line)] = false;
    }
    bool moved = true;
    while (moved) {
      moved = false;
      for (std::size_t line = 0; line < layout_.lines.size(); ++line) {
        if (layers_[endOf(line)] > layers_[beginOf(line)]) continue;
        layers_[endOf(line)] = layers_[beginOf(line)] + 2;
        moved = true;
      }
    }
  }

  std::size_t addSpot(std::size_t layer, double width, double height,
                      std::optional<std::size_t> box = std::nullopt) {
    spots_.push_back({box, layer, width, height, 0, {}, {}});
    if (columns_.size() <= layer) columns_.resize(layer + 1);
    columns_[layer].push_back(spots_.size() - 1);
    return spots_.size() - 1;
  }

  void makeSpots() {
    for (std::size_t box = 0; box < layout_.boxes.size(); ++box) {
      const LayoutBox& placed = layout_.boxes[box];
      if (!lonely_[box]) spotOf_[box] = addSpot(layers_[box], placed.width, placed.height, box);
    }
    for (std::size_t line = 0; line < layout_.lines.size(); ++line) {
      const LayoutLine& drawn = layout_.lines[line];
      std::size_t layer = layers_[beginOf(line)] + 1;
      std::vector<std::size_t> way{spotOf_[beginOf(line)],
                                   addSpot(layer, drawn.labelWidth, drawn.labelHeight)};
      while (++layer < layers_[endOf(line)]) way.push_back(addSpot(layer, 0, 4));
      way.push_back(spotOf_[endOf(line)]);
      for (std::size_t step = 1; step < way.size(); ++step) {
        spots_[way[step - 1]].right.push_back(way[step]);
        spots_[way[step]].left.push_back(way[step - 1]);
      }
      ways_.push_back(std::move(way));
    }
  }

  /** Orders each column by where its neighbours are, there and back, until little changes. */
  void order() {
    for (auto& column : columns_) number(column);
    for (int sweep = 0; sweep < kSweeps; ++sweep) {
      const bool forth = sweep % 2 == 0;
      for (std::size_t step = 0; step < columns_.size(); ++step) {
        auto& column = columns_[forth ? step : columns_.size() - 1 - step];
        std::vector<std::pair<double, std::size_t>> wanted;
        for (const std::size_t spot : column) {
          const auto& neighbours = forth ? spots_[spot].left : spots_[spot].right;
          wanted.emplace_back(neighbours.empty() ? spots_[spot].y : meanOf(neighbours), spot);
        }
        std::stable_sort(wanted.begin(), wanted.end(), [](const auto& one, const auto& other) {
          return one.first < other.first;
        });
        for (std::size_t place = 0; place < column.size(); ++place) {
          column[place] = wanted[place].second;
        }
        number(column);
      }
    }
  }

  void number(const std::vector<std::size_t>& column) {
    for (std::size_t place = 0; place < column.size(); ++place) {
      spots_[column[place]].y = static_cast<double>(place);
    }
  }

  double meanOf(const std::vector<std::size_t>& spots) const {
    double sum = 0;
    for (const std::size_t spot : spots) sum += spots_[spot].y;
    return sum / static_cast<double>(spots.size());
  }

  /** Puts the spots of each column one below the other, near to their neighbours. */
  void findHeights() {
    for (const auto& column : columns_) {
      double y = 0;
      for (const std::size_t spot : column) {
        y += spots_[spot].height / 2;
        spots_[spot].y = y;
        y += spots_[spot].height / 2 + kAbove;
      }
    }
    for (int sweep = 0; sweep < kSweeps; ++sweep) {
      for (const auto& column : columns_) settle(column);
      for (auto column = columns_.rbegin(); column != columns_.rend(); ++column) settle(*column);
    }
    double top = std::numeric_limits<double>::max();
    for (const Spot& spot : spots_) top = std::min(top, spot.y - spot.height / 2);
    for (Spot& spot : spots_) {
      spot.y -= top;
      layout_.height = std::max(layout_.height, spot.y + spot.height / 2);
    }
  }

  void settle(const std::vector<std::size_t>& column) {
    for (const std::size_t spot : column) {
      std::vector<std::size_t> neighbours = spots_[spot].left;
      neighbours.insert(neighbours.end(), spots_[spot].right.begin(), spots_[spot].right.end());
      if (!neighbours.empty()) spots_[spot].y = meanOf(neighbours);
    }
    // Those that are too close are pushed apart by half each, so that the column stays where it is.
    for (int round = 0; round < 50; ++round) {
      for (std::size_t place = 1; place < column.size(); ++place) {
        pushApart(spots_[column[place - 1]], spots_[column[place]]);
      }
    }
    for (std::size_t place = 1; place < column.size(); ++place) {
      Spot& above = spots_[column[place - 1]];
      Spot& below = spots_[column[place]];
      below.y = std::max(below.y, above.y + distance(above, below));
    }
  }

  static double distance(const Spot& above, const Spot& below) {
    return (above.height + below.height) / 2 + kAbove;
  }

  static void pushApart(Spot& above, Spot& below) {
    const double missing = distance(above, below) - (below.y - above.y);
    if (missing <= 0) return;
    above.y -= missing / 2;
    below.y += missing / 2;
  }

  void findColumns() {
    double x = 0;
    for (const auto& column : columns_) {
      double width = 0;
      for (const std::size_t spot : column) {
        width = std::max(width, spots_[spot].width);
      }
      lefts_.push_back(x);
      widths_.push_back(width);
      for (const std::size_t spot : column) {
        if (!spots_[spot].box) continue;
        LayoutBox& box = layout_.boxes[*spots_[spot].box];
        box.x = x + (width - box.width) / 2;
        box.y = spots_[spot].y - box.height / 2;
      }
      layout_.width = std::max(layout_.width, x + width);
      x += width + kBetweenColumns;
    }
  }

  /** @returns where a line leaves or reaches a spot: several of a side share its height. */
  double portOf(std::size_t spot, bool rightSide, std::size_t neighbour) {
    std::vector<std::size_t> all = rightSide ? spots_[spot].right : spots_[spot].left;
    std::stable_sort(all.begin(), all.end(), [this](std::size_t one, std::size_t other) {
      return spots_[one].y < spots_[other].y;
    });
    const auto place =
        static_cast<double>(std::find(all.begin(), all.end(), neighbour) - all.begin());
    const double share = (place + 1) / (static_cast<double>(all.size()) + 1);
    return spots_[spot].y - spots_[spot].height / 2 + spots_[spot].height * share;
  }

  void drawLines() {
    for (std::size_t line = 0; line < layout_.lines.size(); ++line) {
      std::vector<LayoutPoint> points;
      const auto& way = ways_[line];
      for (std::size_t step = 0; step + 1 < way.size(); ++step) {
        points.push_back({rightOf(way[step]), portOf(way[step], true, way[step + 1])});
        points.push_back({leftOf(way[step + 1]), portOf(way[step + 1], false, way[step])});
      }
      LayoutLine& drawn = layout_.lines[line];
      const std::size_t column = spots_[way[1]].layer;
      drawn.label = {lefts_[column] + widths_[column] / 2, spots_[way[1]].y};
      if (turned_[line]) std::reverse(points.begin(), points.end());
      drawn.points = std::move(points);
    }
  }

  double leftOf(std::size_t spot) const {
    if (spots_[spot].box) return layout_.boxes[*spots_[spot].box].x;
    return lefts_[spots_[spot].layer];
  }
  double rightOf(std::size_t spot) const {
    if (!spots_[spot].box) return lefts_[spots_[spot].layer] + widths_[spots_[spot].layer];
    const LayoutBox& box = layout_.boxes[*spots_[spot].box];
    return box.x + box.width;
  }

  void placeLonely() {
    const double widest = std::max(layout_.width, kLoosestRow);
    double x = 0;
    double y = layout_.height == 0 ? 0 : layout_.height + 2 * kAbove;
    double tallest = 0;
    for (std::size_t box = 0; box < layout_.boxes.size(); ++box) {
      if (!lonely_[box]) continue;
      LayoutBox& placed = layout_.boxes[box];
      if (x > 0 && x + placed.width > widest) {
        x = 0;
        y += tallest + kAbove;
        tallest = 0;
      }
      placed.x = x;
      placed.y = y;
      x += placed.width + kAbove;
      tallest = std::max(tallest, placed.height);
      layout_.width = std::max(layout_.width, placed.x + placed.width);
      layout_.height = std::max(layout_.height, placed.y + placed.height);
    }
  }

  Layout& layout_;
  std::vector<std::size_t> spotOf_;
  std::vector<bool> turned_;
  std::vector<bool> lonely_;
  std::vector<std::size_t> layers_;
  std::vector<Spot> spots_;
  std::vector<std::vector<std::size_t>> columns_;
  std::vector<std::vector<std::size_t>> ways_;
  std::vector<double> lefts_;
  std::vector<double> widths_;
};

}  // namespace

void placeInLayers(Layout& layout) {
  layout.width = 0;
  layout.height = 0;
  Placing(layout).place();
}

}  // namespace zerva
