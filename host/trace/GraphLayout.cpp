#include "host/trace/GraphLayout.h"

#include <algorithm>
#include <limits>

namespace zerva {
namespace {

constexpr double kAbove = 18;
constexpr double kBetweenColumns = 30;
constexpr int kSweeps = 8;
constexpr double kLoosestRow = 900;
constexpr std::size_t kLongestWay = 60;

/** A box, a label, or the place where a line passes through a column. */
struct Spot {
  std::optional<std::size_t> box;
  std::size_t layer = 0;
  double width = 0;
  double height = 0;
  double y = 0;
  std::vector<std::size_t> left;
  std::vector<std::size_t> right;
  // Of none that is a box: where its line leaves the box before it, and reaches the one after it.
  double leftPort = 0;
  double rightPort = 0;
};

class Placing {
  /** For each box the others to which lines lead, or from which. */
  using Neighbours = std::vector<std::vector<std::size_t>>;

 public:
  explicit Placing(Layout& layout) : layout_(layout), spotOf_(layout.boxes.size()) {}

  void place() {
    findNeighbours();
    findOrder();
    findLayers();
    makeSpots();
    order();
    findHeights();
    findColumns();
    findPorts();
    drawLines();
    placeLonely();
  }

 private:
  void findNeighbours() {
    callees_.resize(layout_.boxes.size());
    callers_.resize(layout_.boxes.size());
    for (const LayoutLine& line : layout_.lines) {
      callees_[line.from].push_back(line.to);
      callers_[line.to].push_back(line.from);
    }
  }

  /**
   * Orders the boxes so that lines lead from the first to the last but in circles. In a circle the
   * one that is found first begins, and the others come by how many lines away they are, so that
   * few columns are enough for many of them.
   */
  void findOrder() {
    // Backwards from the one that a search in depth leaves last is only its own circle.
    std::vector<std::size_t> left = leftInDepth();
    std::vector<int> states(left.size(), 0);
    for (auto box = left.rbegin(); box != left.rend(); ++box) {
      if (states[*box] > 0) continue;
      reached(*box, callers_, states, 0);
      for (const std::size_t next : reached(*box, callees_, states, 1)) order_.push_back(next);
    }
    places_.resize(order_.size());
    for (std::size_t place = 0; place < order_.size(); ++place) places_[order_[place]] = place;
  }

  /** @returns the boxes in the order in which a search that goes on from the last one leaves them.
   */
  std::vector<std::size_t> leftInDepth() const {
    std::vector<std::size_t> left;
    std::vector<std::size_t> begun(callees_.size(), 0);
    std::vector<bool> seen(callees_.size(), false);
    for (std::size_t first = 0; first < callees_.size(); ++first) {
      if (seen[first]) continue;
      seen[first] = true;
      for (std::vector<std::size_t> way{first}; !way.empty();) {
        const std::size_t box = way.back();
        if (begun[box] == callees_[box].size()) {
          left.push_back(box);
          way.pop_back();
          continue;
        }
        const std::size_t next = callees_[box][begun[box]++];
        if (!seen[next]) way.push_back(next);
        seen[next] = true;
      }
    }
    return left;
  }

  /** @returns those in a state that lead on from one of them, the next first; it is raised. */
  static std::vector<std::size_t> reached(std::size_t first, const Neighbours& neighbours,
                                          std::vector<int>& states, int state) {
    std::vector<std::size_t> all{first};
    ++states[first];
    for (std::size_t place = 0; place < all.size(); ++place) {
      for (const std::size_t next : neighbours[all[place]]) {
        if (states[next] != state) continue;
        ++states[next];
        all.push_back(next);
      }
    }
    return all;
  }

  bool isTurned(const LayoutLine& line) const { return places_[line.from] > places_[line.to]; }
  std::size_t beginOf(const LayoutLine& line) const { return isTurned(line) ? line.to : line.from; }
  std::size_t endOf(const LayoutLine& line) const { return isTurned(line) ? line.from : line.to; }
  bool isLonely(std::size_t box) const { return callees_[box].empty() && callers_[box].empty(); }

  /**
   * Each box comes after the last one of those that lead to it; between two columns of boxes is one
   * of labels.
   */
  void findLayers() {
    layers_.assign(layout_.boxes.size(), 0);
    for (const std::size_t box : order_) {
      for (const Neighbours* const neighbours : {&callees_, &callers_}) {
        for (const std::size_t next : (*neighbours)[box]) {
          if (places_[next] > places_[box])
            layers_[next] = std::max(layers_[next], layers_[box] + 2);
        }
      }
    }
  }

  std::size_t addSpot(std::size_t layer, double width, double height,
                      std::optional<std::size_t> box = std::nullopt) {
    spots_.push_back({box, layer, width, height, 0, {}, {}, 0, 0});
    if (columns_.size() <= layer) columns_.resize(layer + 1);
    columns_[layer].push_back(spots_.size() - 1);
    return spots_.size() - 1;
  }

  void makeSpots() {
    for (std::size_t box = 0; box < layout_.boxes.size(); ++box) {
      const LayoutBox& placed = layout_.boxes[box];
      if (!isLonely(box)) spotOf_[box] = addSpot(layers_[box], placed.width, placed.height, box);
    }
    for (const LayoutLine& line : layout_.lines) {
      std::size_t layer = layers_[beginOf(line)] + 1;
      std::vector<std::size_t> way{spotOf_[beginOf(line)],
                                   addSpot(layer, line.labelWidth, line.labelHeight)};
      const std::size_t end = layers_[endOf(line)];
      // A longer one goes straight on behind what is in its way.
      const std::size_t around = std::min(end, layer + kLongestWay);
      while (++layer < around) way.push_back(addSpot(layer, 0, 4));
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

  /** Where the lines leave or reach a box: those of a side share its height. */
  void findPorts() {
    for (const Spot& spot : spots_) {
      if (!spot.box) continue;
      for (const bool right : {false, true}) {
        std::vector<std::size_t> all = right ? spot.right : spot.left;
        std::stable_sort(all.begin(), all.end(), [this](std::size_t one, std::size_t other) {
          return spots_[one].y < spots_[other].y;
        });
        const double share = spot.height / (static_cast<double>(all.size()) + 1);
        for (std::size_t place = 0; place < all.size(); ++place) {
          double& port = right ? spots_[all[place]].leftPort : spots_[all[place]].rightPort;
          port = spot.y - spot.height / 2 + share * static_cast<double>(place + 1);
        }
      }
    }
  }

  void drawLines() {
    for (std::size_t line = 0; line < layout_.lines.size(); ++line) {
      const auto& way = ways_[line];
      const Spot& label = spots_[way[1]];
      std::vector<LayoutPoint> points{{rightOf(way.front()), label.leftPort}};
      for (std::size_t step = 1; step + 1 < way.size(); ++step) {
        points.push_back({leftOf(way[step]), spots_[way[step]].y});
        points.push_back({rightOf(way[step]), spots_[way[step]].y});
      }
      points.push_back({leftOf(way.back()), spots_[way[way.size() - 2]].rightPort});
      LayoutLine& drawn = layout_.lines[line];
      drawn.label = {lefts_[label.layer] + widths_[label.layer] / 2, label.y};
      if (isTurned(drawn)) std::reverse(points.begin(), points.end());
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
      if (!isLonely(box)) continue;
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
  Neighbours callees_;
  Neighbours callers_;
  std::vector<std::size_t> order_;
  std::vector<std::size_t> places_;  // of the boxes in the order
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
