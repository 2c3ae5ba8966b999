#include "host/trace/GraphChart.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/trace/DurationText.h"
#include "host/trace/GraphLayout.h"
#include "host/trace/Svg.h"

namespace zerva {
namespace {

constexpr double kMargin = 20;
constexpr double kText = 12;
constexpr double kBold = 13;
constexpr double kSmall = 10;
constexpr double kLine = 15;
constexpr double kInside = 10;
constexpr double kWidestName = 420;
constexpr double kWidestProcess = 900;
constexpr std::size_t kColours = 6;

constexpr const char* kStyle = R"(
text{font-family:"DejaVu Sans",Verdana,Helvetica,Arial,sans-serif;font-size:12px;fill:#1f2933}
.paper{fill:#ffffff}.title{font-size:16px;font-weight:bold}.head{font-weight:bold}
.small{font-size:10px;fill:#52606d}.count{font-size:10px}.bad{font-size:10px;fill:#b3261e}
.box{fill:#f5f7fa;stroke:#52606d;stroke-width:1}
.unknown{fill:#ffffff;stroke:#b3261e;stroke-width:1.2;stroke-dasharray:5 3}
.arrow{fill:none;stroke:#52606d;stroke-width:1.3}.tip{fill:#52606d}
.failing{fill:none;stroke:#b3261e;stroke-width:1.3}.failingtip{fill:#b3261e}
.label{fill:#ffffff;fill-opacity:0.9}
.p0{fill:#4c78a8}.p1{fill:#f2a93b}.p2{fill:#54a6a1}.p3{fill:#a06cb4}.p4{fill:#8d6e63}.p5{fill:#d9534f}
)";

std::string amount(std::uint64_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

/** The lines of a label, or of what a box tells of the calls of a service to itself. */
struct Words {
  std::string calls;
  std::string failures;
  std::string median;
};

Words wordsOf(const GraphArrow& arrow) {
  const bool messages = std::all_of(arrow.methods.begin(), arrow.methods.end(),
                                    [](const MethodCalls& calls) { return calls.method.empty(); });
  Words words;
  words.calls = amount(arrow.count(), messages ? "message" : "call");
  if (arrow.failures() > 0) words.failures = std::to_string(arrow.failures()) + " failed";
  words.median = "median " + durationText(arrow.median());
  return words;
}

double widthOf(const Words& words) {
  return std::max({textWidth(words.calls, kSmall), textWidth(words.failures, kSmall),
                   textWidth(words.median, kSmall)});
}

std::string tipOf(const CallGraph& graph, const GraphArrow& arrow) {
  std::string tip = graph.nodes[arrow.from].name + " calls " + graph.nodes[arrow.to].name;
  for (const MethodCalls& calls : arrow.methods) {
    tip += "\n" + (calls.method.empty() ? "messages" : calls.interface + "." + calls.method) +
           ": " + std::to_string(calls.count);
    if (calls.failures > 0) tip += ", " + std::to_string(calls.failures) + " failed";
    tip += ", median " + durationText(medianOf(calls.times));
  }
  return tip;
}

std::string pointText(const LayoutPoint& point) {
  return Svg::number(point.x) + " " + Svg::number(point.y);
}

/** A line of a box. */
struct BoxLine {
  std::string text;
  const char* cssClass;
  double size;
};

class Chart {
 public:
  explicit Chart(const CallGraph& graph) : graph_(graph) {
    for (const GraphNode& node : graph_.nodes) {
      texts_.push_back(linesOf(node));
      tips_.push_back(node.name + (node.process ? "\n" + graph_.processes[*node.process] : ""));
    }
    for (const GraphArrow& arrow : graph_.arrows) {
      if (arrow.from != arrow.to) continue;
      texts_[arrow.from].push_back(lineOfItself(arrow));
      tips_[arrow.from] += "\n" + tipOf(graph_, arrow);
    }
    for (const auto& lines : texts_) layout_.boxes.push_back(boxOf(lines));
    for (const GraphArrow& arrow : graph_.arrows) {
      if (arrow.from == arrow.to) continue;
      const Words words = wordsOf(arrow);
      const double height = words.failures.empty() ? 28 : 40;
      layout_.lines.push_back({arrow.from, arrow.to, widthOf(words) + 8, height, {}, {}});
      arrows_.push_back(&arrow);
    }
    placeInLayers(layout_);
  }

  std::string draw() {
    const double width = header();
    for (std::size_t place = 0; place < arrows_.size(); ++place) line(place);
    for (std::size_t place = 0; place < graph_.nodes.size(); ++place) box(place);
    for (std::size_t place = 0; place < arrows_.size(); ++place) label(place);
    return svg_.document(std::max(width, layout_.width + 2 * kMargin),
                         top_ + layout_.height + kMargin, "Who called whom", kStyle, "");
  }

 private:
  static BoxLine lineOf(const GraphNode& node, const DeclaredInterface& declared) {
    if (node.declared && !declared.declared) {
      return {shortened(declared.name + " (not declared)", kSmall, kWidestName), "bad", kSmall};
    }
    if (!declared.called) {
      return {shortened(declared.name + " (not called)", kSmall, kWidestName), "small", kSmall};
    }
    return {shortened(declared.name, kSmall, kWidestName), "count", kSmall};
  }

  const char* whyUnknown(const GraphNode& node) const {
    if (node.process) return node.declared ? "its calls are not known" : "not looked at";
    return graph_.live ? "not on the bus" : "in none of these traces";
  }

  std::vector<BoxLine> linesOf(const GraphNode& node) const {
    std::vector<BoxLine> lines{{shortened(node.name, kBold, kWidestName), "head", kBold}};
    for (const DeclaredInterface& declared : node.interfaces) {
      lines.push_back(lineOf(node, declared));
    }
    if (!node.lookedAt) lines.push_back({whyUnknown(node), "bad", kSmall});
    return lines;
  }

  static BoxLine lineOfItself(const GraphArrow& arrow) {
    const Words words = wordsOf(arrow);
    const bool failing = !words.failures.empty();
    return {"itself: " + words.calls + (failing ? ", " + words.failures : "") + ", " + words.median,
            failing ? "bad" : "small", kSmall};
  }

  static LayoutBox boxOf(const std::vector<BoxLine>& lines) {
    double widest = 60;
    for (const BoxLine& line : lines) widest = std::max(widest, textWidth(line.text, line.size));
    return {widest + 2 * kInside + 6, kLine * static_cast<double>(lines.size()) + 12, 0, 0};
  }

  /** The title and the processes. @returns how wide they are. */
  double header() {
    svg_.text(kMargin, 30, "Who called whom", "title");
    double y = 40;
    double widest = 0;
    for (std::size_t process = 0; process < graph_.processes.size(); ++process) {
      y += 17;
      svg_.rectangle(kMargin, y - 10, 12, 12, classOf(process));
      const std::string name = shortened(graph_.processes[process], kText, kWidestProcess);
      svg_.text(kMargin + 18, y, name, "process");
      widest = std::max(widest, textWidth(name, kText));
    }
    for (const std::string& text : remarks()) {
      y += 17;
      svg_.text(kMargin, y, text, "bad");
      widest = std::max(widest, textWidth(text, kSmall));
    }
    top_ = y + 26;
    return widest + 18 + 2 * kMargin;
  }

  /** @returns what is missing in the picture. */
  std::vector<std::string> remarks() const {
    std::vector<std::string> texts;
    if (graph_.lost > 0) {
      texts.push_back(std::to_string(graph_.lost) + " events are missing: there may be more calls");
    }
    if (graph_.others > 0) {
      texts.push_back(amount(graph_.others, "call") + " more, " +
                      std::to_string(graph_.failedOthers) +
                      " of them failed, of others, too many to be told apart");
    }
    return texts;
  }

  static std::string classOf(std::size_t process) {
    return "p" + std::to_string(process % kColours);
  }

  LayoutPoint moved(const LayoutPoint& point) const { return {point.x + kMargin, point.y + top_}; }

  void box(std::size_t place) {
    const GraphNode& node = graph_.nodes[place];
    const LayoutBox& box = layout_.boxes[place];
    const LayoutPoint corner = moved({box.x, box.y});
    svg_.beginGroup("node", tips_[place]);
    svg_.rectangle(corner.x, corner.y, box.width, box.height, node.lookedAt ? "box" : "unknown", "",
                   4);
    if (node.process) {
      svg_.rectangle(corner.x, corner.y, 6, box.height, classOf(*node.process), "", 3);
    }
    double y = corner.y + 6;
    for (const BoxLine& line : texts_[place]) {
      y += kLine;
      svg_.text(corner.x + kInside + 4, y - 3, line.text, line.cssClass);
    }
    svg_.endGroup();
  }

  void line(std::size_t place) {
    const bool failing = arrows_[place]->failures() > 0;
    std::vector<LayoutPoint> points;
    for (const LayoutPoint& point : layout_.lines[place].points) points.push_back(moved(point));
    const bool rightwards = points.back().x > points[points.size() - 2].x;
    const double back = rightwards ? -8 : 8;
    const LayoutPoint head = points.back();
    points.back().x += back;
    std::string path = "M " + pointText(points.front());
    for (std::size_t step = 1; step < points.size(); ++step) {
      const LayoutPoint& one = points[step - 1];
      const LayoutPoint& other = points[step];
      const double middle = (one.x + other.x) / 2;
      path += " C " + pointText({middle, one.y}) + " " + pointText({middle, other.y}) + " " +
              pointText(other);
    }
    svg_.path(path, failing ? "failing" : "arrow", tipOf(graph_, *arrows_[place]));
    svg_.path("M " + pointText(head) + " L " + pointText({head.x + back, head.y - 4}) + " L " +
                  pointText({head.x + back, head.y + 4}) + " Z",
              failing ? "failingtip" : "tip");
  }

  void label(std::size_t place) {
    const LayoutLine& line = layout_.lines[place];
    const Words words = wordsOf(*arrows_[place]);
    const LayoutPoint middle = moved(line.label);
    svg_.beginGroup("calls", tipOf(graph_, *arrows_[place]));
    svg_.rectangle(middle.x - line.labelWidth / 2, middle.y - line.labelHeight / 2, line.labelWidth,
                   line.labelHeight, "label");
    double y = middle.y - line.labelHeight / 2;
    const auto row = [&](const std::string& text, const char* cssClass) {
      y += 12;
      svg_.text(middle.x, y, text, cssClass, Anchor::Middle);
    };
    row(words.calls, "count");
    if (!words.failures.empty()) row(words.failures, "bad");
    row(words.median, "small");
    svg_.endGroup();
  }

  const CallGraph& graph_;
  std::vector<std::vector<BoxLine>> texts_;  // of the boxes
  std::vector<std::string> tips_;            // of the boxes
  std::vector<const GraphArrow*> arrows_;
  Layout layout_;
  double top_ = 0;
  Svg svg_;
};

}  // namespace

std::string callGraphSvg(const CallGraph& graph) { return Chart(graph).draw(); }

}  // namespace zerva
