#include <gtest/gtest.h>

#include <cmath>

#include "host/trace/GraphLayout.h"

namespace zerva {
namespace {

Layout layoutOf(std::size_t boxes, const std::vector<std::pair<std::size_t, std::size_t>>& lines) {
  Layout layout;
  for (std::size_t box = 0; box < boxes; ++box) {
    layout.boxes.push_back({100, 30 + 10 * static_cast<double>(box % 3), 0, 0});
  }
  for (const auto& [from, to] : lines) layout.lines.push_back({from, to, 60, 28, {}, {}});
  placeInLayers(layout);
  return layout;
}

bool overlap(const LayoutBox& one, const LayoutBox& other) {
  return one.x < other.x + other.width && other.x < one.x + one.width &&
         one.y < other.y + other.height && other.y < one.y + one.height;
}

LayoutBox labelOf(const LayoutLine& line) {
  return {line.labelWidth, line.labelHeight, line.label.x - line.labelWidth / 2,
          line.label.y - line.labelHeight / 2};
}

void expectNothingOnAnother(const Layout& layout) {
  std::vector<LayoutBox> all = layout.boxes;
  for (const LayoutLine& line : layout.lines) all.push_back(labelOf(line));
  for (std::size_t one = 0; one < all.size(); ++one) {
    EXPECT_GE(all[one].x, -0.01);
    EXPECT_GE(all[one].y, -0.01);
    EXPECT_LE(all[one].x + all[one].width, layout.width + 0.01);
    EXPECT_LE(all[one].y + all[one].height, layout.height + 0.01);
    for (std::size_t other = 0; other < one; ++other) {
      EXPECT_FALSE(overlap(all[one], all[other])) << one << " and " << other;
    }
  }
}

TEST(ALayout, PutsWhoIsCalledToTheRightOfTheCaller) {
  const Layout sut = layoutOf(3, {{0, 1}, {1, 2}, {0, 2}});
  EXPECT_LT(sut.boxes[0].x + sut.boxes[0].width, sut.boxes[1].x);
  EXPECT_LT(sut.boxes[1].x + sut.boxes[1].width, sut.boxes[2].x);
}

TEST(ALayout, LeadsEachLineFromItsBoxToTheOther) {
  const Layout sut = layoutOf(3, {{0, 1}, {1, 2}, {0, 2}, {2, 0}});
  for (const LayoutLine& line : sut.lines) {
    const bool forth = line.points.front().x < line.points.back().x;
    const LayoutBox& from = sut.boxes[line.from];
    const LayoutBox& to = sut.boxes[line.to];
    EXPECT_NEAR(line.points.front().x, forth ? from.x + from.width : from.x, 0.01);
    EXPECT_NEAR(line.points.back().x, forth ? to.x : to.x + to.width, 0.01);
    EXPECT_GE(line.points.back().y, to.y);
    EXPECT_LE(line.points.back().y, to.y + to.height);
  }
}

TEST(ALayout, EndsWhenThereAreCircles) {
  expectNothingOnAnother(layoutOf(4, {{0, 1}, {1, 2}, {2, 0}, {3, 1}, {1, 3}, {0, 2}}));
}

TEST(ALayout, PutsBoxesWithoutLinesBesideEachOtherBelow) {
  const Layout sut = layoutOf(30, {{0, 1}});
  expectNothingOnAnother(sut);
  EXPECT_GT(sut.boxes[2].y, sut.boxes[0].y + sut.boxes[0].height);
}

TEST(ALayout, PutsNothingOnAnotherWhoeverIsConnected) {
  unsigned state = 7;
  const auto random = [&](unsigned below) {
    state = state * 1103515245 + 12345;
    return (state / 65536) % below;
  };
  for (int round = 0; round < 30; ++round) {
    const unsigned boxes = 2 + random(20);
    std::vector<std::pair<std::size_t, std::size_t>> lines;
    for (unsigned line = random(40); line > 0; --line) {
      const unsigned from = random(boxes);
      const unsigned to = random(boxes);
      if (from != to) lines.emplace_back(from, to);
    }
    expectNothingOnAnother(layoutOf(boxes, lines));
  }
}

using Lines = std::vector<std::pair<std::size_t, std::size_t>>;

/** @returns so many lines between any boxes, the same each time. */
Lines anyLines(std::size_t boxes, std::size_t count) {
  unsigned state = 11;
  const auto box = [&] {
    state = state * 1103515245 + 12345;
    return state / 65536 % boxes;
  };
  Lines lines;
  while (lines.size() < count) {
    const std::size_t from = box();
    const std::size_t to = box();
    if (from != to) lines.emplace_back(from, to);
  }
  return lines;
}

// A box, a label and what is left between them.
constexpr double kWidthOfALayer = 100 + 60 + 2 * 30;

TEST(ALayout, HasFewColumnsForManyBoxesInCircles) {
  const Layout sut = layoutOf(300, anyLines(300, 900));
  EXPECT_LT(sut.width, 25 * kWidthOfALayer);
  expectNothingOnAnother(sut);
  EXPECT_LT(layoutOf(500, anyLines(500, 3000)).width, 50 * kWidthOfALayer);
}

TEST(ALayout, PutsThoseOfACircleByHowFarTheyAreFromWhereItBegins) {
  const Layout sut =
      layoutOf(5, {{0, 1}, {1, 4}, {4, 2}, {4, 3}, {2, 0}, {3, 0}, {0, 2}, {0, 3}, {4, 0}});
  EXPECT_EQ(sut.boxes[1].x, sut.boxes[2].x);
  EXPECT_EQ(sut.boxes[1].x, sut.boxes[3].x);
  EXPECT_LT(sut.boxes[3].x, sut.boxes[4].x);
}

TEST(ALayout, LeadsToTheRightFromOneCircleToTheNext) {
  const Layout sut = layoutOf(5, {{1, 2}, {2, 1}, {0, 1}, {2, 0}, {3, 4}, {4, 3}, {4, 1}, {3, 2}});
  for (const std::size_t line : {6, 7}) {
    EXPECT_LT(sut.lines[line].points.front().x, sut.lines[line].points.back().x) << line;
  }
}

TEST(ALayout, IsFoundForALongChain) {
  constexpr std::size_t count = 200000;
  Lines lines;
  for (std::size_t box = 1; box < count; ++box) lines.emplace_back(box - 1, box);
  EXPECT_LT(layoutOf(count, lines).height, 60);
}

TEST(ALayout, IsFoundForOneThatIsCalledByAllOthers) {
  constexpr std::size_t count = 50000;
  Lines lines;
  for (std::size_t box = 1; box < count; ++box) lines.emplace_back(box, 0);
  EXPECT_EQ(layoutOf(count, lines).width, 2 * 100 + 60 + 2 * 30);
}

TEST(ALayout, IsFoundForManyLinesThatLeadFar) {
  constexpr std::size_t count = 5000;
  Lines lines;
  for (std::size_t box = 1; box < count; ++box) lines.emplace_back(box - 1, box);
  for (std::size_t box = 1; box + 1 < count; ++box) lines.emplace_back(box - 1, count - 1);
  const Layout sut = layoutOf(count, lines);
  for (const LayoutLine& line : sut.lines) EXPECT_LT(line.points.size(), 130U);
}

TEST(ALayout, OfNothingIsEmpty) {
  const Layout sut = layoutOf(0, {});
  EXPECT_EQ(sut.width, 0);
  EXPECT_EQ(sut.height, 0);
}

}  // namespace
}  // namespace zerva
