#pragma once

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace zerva {

/** A box that is to be placed. */
struct LayoutBox {
  double width = 0;
  double height = 0;
  // Found by the layout: its upper left corner.
  double x = 0;
  double y = 0;
};

struct LayoutPoint {
  double x = 0;
  double y = 0;
};

/** A line between two boxes, that has a label. */
struct LayoutLine {
  std::size_t from = 0;
  std::size_t to = 0;
  double labelWidth = 0;
  double labelHeight = 0;
  // Found by the layout.
  /** From its beginning to its end; curves go through all of them. */
  std::vector<LayoutPoint> points;
  /** The middle of the label. */
  LayoutPoint label;
};

/** What is to be drawn, and where. */
struct Layout {
  std::vector<LayoutBox> boxes;
  /** None from a box to itself. */
  std::vector<LayoutLine> lines;
  // Found by the layout.
  double width = 0;
  double height = 0;
};

/**
 * Places boxes in columns, so that lines go from left to right as far as there are no circles, and
 * cross little; one that leads over very many columns goes straight on behind what is in its way.
 * Boxes without lines come last, below the others, side by side. Neither boxes nor labels lie on
 * each other. The time that it takes grows about as boxes and lines do.
 */
void placeInLayers(Layout& layout);

}  // namespace zerva
