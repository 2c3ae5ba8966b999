#include "host/trace/TimelineChart.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <vector>

#include "host/trace/CriticalPath.h"
#include "host/trace/DurationText.h"
#include "host/trace/Panels.h"
#include "host/trace/Svg.h"

namespace zerva {
namespace {

constexpr double kMargin = 16;
constexpr double kTop = 118;
constexpr double kRow = 24;
constexpr double kBar = 12;
constexpr double kText = 12;
constexpr double kSmall = 10;
constexpr double kWidestName = 300;
constexpr double kSideWidth = 330;
constexpr std::size_t kSlowest = 10;
constexpr std::size_t kShares = 6;

constexpr const char* kStyle = R"(
text{font-family:"DejaVu Sans",Verdana,Helvetica,Arial,sans-serif;font-size:12px;fill:#1f2933}
.paper{fill:#ffffff}.title{font-size:16px;font-weight:bold}.head{font-weight:bold}
.small{font-size:10px;fill:#52606d}.bad{font-size:10px;fill:#b3261e}
.even{fill:#f5f7fa}.axis{stroke:#9aa5b1;stroke-width:1}.grid{stroke:#e4e7eb;stroke-width:1}
.library{fill:#4c78a8}.creator{fill:#54a6a1}.executor{fill:#9aa5b1}.announcement{fill:#a06cb4}
.init{fill:#f2a93b}.stop{fill:#d9534f}.deletion{fill:#8d6e63}.running{fill:#d8ecd3}
.waiting{fill:url(#waiting)}.lazy{stroke:#9aa5b1;stroke-width:1.5;stroke-dasharray:2 3}
.critical{fill:#c2185b}.failed{stroke:#b3261e;stroke-width:2}
)";

constexpr const char* kPatterns =
    "<pattern id=\"waiting\" width=\"5\" height=\"5\" patternUnits=\"userSpaceOnUse\" "
    "patternTransform=\"rotate(45)\"><rect width=\"5\" height=\"5\" fill=\"#ffffff\" "
    "fill-opacity=\"0.75\"/><rect width=\"1.6\" height=\"5\" fill=\"#323f4b\"/></pattern>";

std::string amount(std::size_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string modeOf(const ServiceRun& service) {
  if (service.mode.empty()) return service.kind;
  return service.isLazy() ? service.mode + ", lazy" : service.mode;
}

std::string percent(std::int64_t part, std::int64_t whole) {
  if (whole <= 0) return "";
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%.0f %%",
                100.0 * static_cast<double>(part) / static_cast<double>(whole));
  return text.data();
}

/** What a service's row tells when the mouse is over it. */
std::string tipOf(const ServiceRun& service) {
  std::string tip =
      service.name + " (" + modeOf(service) + ")\n" + service.interfaces + "\n" + service.library;
  for (const Stage stage : {Stage::Library, Stage::Creator, Stage::Executor, Stage::Announcement,
                            Stage::Init, Stage::Stop, Stage::Deletion}) {
    if (const std::int64_t time = service.total(stage); time > 0) {
      tip += std::string("\n") + nameOf(stage) + ": " + durationText(time);
    }
  }
  if (!service.firstCaller.empty()) tip += "\nfirst request from " + service.firstCaller;
  if (!service.error.empty()) tip += "\nfailed: " + service.error;
  return tip;
}

class Chart {
 public:
  explicit Chart(const RunModel& run)
      : run_(run), path_(criticalPath(run)), names_(namesWidth()), panels_(panelsOf(run, bars())) {}

  std::string draw() {
    header();
    legend();
    for (const Panel& panel : panels_) axis(panel);
    row(run_.host, std::nullopt);
    for (std::size_t place = 0; place < run_.services.size(); ++place) {
      row(run_.services[place], place);
    }
    const double sideEnd = side();
    const double height = std::max(rowsEnd(), sideEnd) + kMargin;
    return svg_.document(sideX() + kSideWidth + kMargin, height, titleText(), kStyle, kPatterns);
  }

 private:
  double namesWidth() const {
    double widest = 80;
    for (const ServiceRun& service : run_.services) {
      widest = std::max(widest, std::min(kWidestName, textWidth(service.name, kText)));
    }
    return widest;
  }
  double modesX() const { return kMargin + names_ + 10; }
  double bars() const { return modesX() + textWidth("MT, lazy", kSmall) + 12; }
  double barsEnd() const { return panels_.back().x + panels_.back().width; }
  double sideX() const { return barsEnd() + 32; }
  double rowsEnd() const { return kTop + kRow * static_cast<double>(run_.services.size() + 1); }

  std::string titleText() const {
    return "Services of " + run_.file + ", process " + std::to_string(run_.pid);
  }

  void header() {
    svg_.text(kMargin, 30, shortened(titleText(), 18, barsEnd() - kMargin), "title");
    std::size_t up = 0;
    std::size_t failed = 0;
    for (const ServiceRun& service : run_.services) {
      if (service.up) ++up;
      if (!service.error.empty()) ++failed;
    }
    std::string text = amount(run_.services.size(), "service") + ", " + std::to_string(up) +
                       " came up; the start took " + durationText(run_.start.length());
    if (run_.stop) text += ", the stop " + durationText(run_.stop->length());
    if (failed > 0) text += "; " + std::to_string(failed) + " failed";
    if (run_.lost > 0) text += "; " + std::to_string(run_.lost) + " events are missing";
    svg_.text(kMargin, 50, text, "small");
  }

  void legend() {
    struct Entry {
      const char* cssClass;
      const char* text;
    };
    constexpr std::array entries = {
        Entry{"library", "library"},   Entry{"creator", "creator"},
        Entry{"executor", "executor"}, Entry{"announcement", "announcement"},
        Entry{"init", "init"},         Entry{"waiting", "waiting for others"},
        Entry{"running", "running"},   Entry{"stop", "stop"},
        Entry{"deletion", "deletion"}, Entry{"critical", "critical path"}};
    double x = kMargin;
    svg_.beginGroup("legend");
    for (const Entry& entry : entries) {
      const bool thin = std::string_view(entry.cssClass) == "critical";
      svg_.rectangle(x, thin ? 68 : 63, 16, thin ? 3 : kBar, entry.cssClass);
      svg_.text(x + 21, 73, entry.text, "small");
      x += 21 + textWidth(entry.text, kSmall) + 16;
    }
    svg_.line(x, 69, x + 16, 69, "lazy");
    svg_.text(x + 21, 73, "lazy, not made yet", "small");
    svg_.endGroup();
  }

  void axis(const Panel& panel) {
    svg_.text(panel.x, kTop - 22, shortened(panel.title, kText, panel.width), "head");
    for (const Tick& tick : ticksOf(panel)) {
      const double x = panel.place(tick.at);
      svg_.line(x, kTop - 6, x, rowsEnd(), "grid");
      const double width = textWidth(tick.text, kSmall);
      if (x + width <= panel.x + panel.width + 14) svg_.text(x, kTop - 8, tick.text, "small");
    }
    svg_.line(panel.x, kTop - 4, panel.x + panel.width, kTop - 4, "axis");
  }

  /** @param place the service's; nothing for the host. */
  void row(const ServiceRun& service, std::optional<std::size_t> place) {
    const std::size_t number = place ? *place + 1 : 0;
    const double y = kTop + kRow * static_cast<double>(number);
    svg_.beginGroup("row", place ? tipOf(service) : "what the host does itself");
    if (number % 2 == 1) {
      svg_.rectangle(kMargin - 6, y, barsEnd() - kMargin + 12, kRow, "even");
    }
    svg_.text(kMargin, y + 16, shortened(service.name, kText, names_), "name");
    if (place) svg_.text(modesX(), y + 16, modeOf(service), "small");
    for (const Panel& panel : panels_) {
      state(service, panel, y);
      stages(service, panel, y);
      waits(service, panel, y);
    }
    critical(place, y);
    if (place) took(service, y);
    svg_.endGroup();
  }

  void bar(const Panel& panel, const Interval& when, double y, double height,
           const std::string& cssClass, const std::string& tip) {
    if (!panel.shows(when)) return;
    const double x = panel.place(when.begin);
    constexpr double thinnest = 0.7;
    svg_.rectangle(x, y, std::max(thinnest, panel.place(when.end) - x), height, cssClass, tip);
  }

  /** What it is between its coming up and its going down, or before it is made. */
  void state(const ServiceRun& service, const Panel& panel, double y) {
    std::int64_t down = run_.whole.end;
    for (const StageRun& stage : service.stages) {
      if (stage.stage == Stage::Stop || stage.stage == Stage::Deletion) {
        down = std::min(down, stage.when.begin);
      }
    }
    if (service.up) bar(panel, {*service.up, down}, y + 8, 8, "running", "");
    if (!service.isLazy() || service.stages.empty()) return;
    const Interval made = service.comingUp();
    const std::int64_t end = service.up ? made.begin : down;
    const Interval idle{service.declared, std::max(service.declared, end)};
    if (!panel.shows(idle)) return;
    svg_.line(panel.place(idle.begin), y + 12, panel.place(idle.end), y + 12, "lazy");
  }

  void stages(const ServiceRun& service, const Panel& panel, double y) {
    for (const StageRun& stage : service.stages) {
      const bool down = stage.stage == Stage::Stop || stage.stage == Stage::Deletion;
      if (down != (panel.kind == Panel::Kind::Stop)) continue;
      bar(panel, stage.when, y + 6, kBar, nameOf(stage.stage),
          service.name + ", " + nameOf(stage.stage) + ": " + durationText(stage.when.length()));
    }
    if (service.error.empty() || panel.kind == Panel::Kind::Stop || service.stages.empty()) return;
    const Interval last = service.stages.back().when;
    if (!panel.shows(last)) return;
    const double x = panel.place(last.end);
    svg_.line(x - 4, y + 8, x + 4, y + 16, "failed");
    svg_.line(x - 4, y + 16, x + 4, y + 8, "failed");
  }

  void waits(const ServiceRun& service, const Panel& panel, double y) {
    for (const WaitRun& wait : service.waits) {
      bar(panel, wait.when, y + 6, kBar, "waiting",
          service.name + " waited " + durationText(wait.when.length()) + " for " + wait.what);
    }
  }

  void critical(std::optional<std::size_t> place, double y) {
    for (const PathStep& step : path_) {
      if (step.service == place) bar(panels_.front(), step.when, y + 19, 3, "critical", "");
    }
  }

  /** How long it took, beside its bars in the start, where there is room for it. */
  void took(const ServiceRun& service, double y) {
    const Panel& panel = panels_.front();
    const Interval up = service.comingUp();
    if (up.length() <= 0 || !panel.shows(up)) return;
    const std::string text = durationText(up.length());
    const double width = textWidth(text, kSmall);
    // Behind the cross of one that failed.
    const double end = panel.place(up.end) + (service.error.empty() ? 5 : 9);
    if (end + width <= panel.x + panel.width) {
      svg_.text(end, y + 16, text, "small");
    } else if (panel.place(up.begin) - 5 - width >= panel.x) {
      svg_.text(panel.place(up.begin) - 5, y + 16, text, "small", Anchor::End);
    }
  }

  /** The lists beside the rows. @returns where they end. */
  double side() {
    double y = kTop - 22;
    const auto entry = [&](const std::string& left, const std::string& right) {
      y += 17;
      svg_.text(sideX(), y, right, "small");
      svg_.text(sideX() + 66, y, shortened(left, kText, kSideWidth - 66), "name");
    };
    svg_.beginGroup("slowest");
    svg_.text(sideX(), y, "Slowest to come up", "head");
    for (const ServiceRun* service : slowestOf(run_, kSlowest)) {
      entry(service->name, durationText(service->comingUp().length()));
      if (const std::string parts = partsOf(*service); !parts.empty()) {
        y += 13;
        svg_.text(sideX() + 66, y, shortened(parts, kSmall, kSideWidth - 66), "small");
      }
    }
    svg_.endGroup();
    y += 34;
    svg_.beginGroup("shares");
    svg_.text(sideX(), y, "Critical path of the start", "head");
    std::size_t shown = 0;
    for (const PathShare& share : sharesOf(path_)) {
      if (++shown > kShares) break;
      const std::string name = share.service ? run_.services[*share.service].name : run_.host.name;
      entry(name, percent(share.time, run_.start.length()));
    }
    svg_.endGroup();
    return y;
  }

  static std::string partsOf(const ServiceRun& service) {
    std::string parts;
    const auto add = [&](const std::string& what, std::int64_t time) {
      if (time <= 0) return;
      parts += (parts.empty() ? "" : ", ") + what + " " + durationText(time);
    };
    add("library", service.total(Stage::Library));
    add("init", service.total(Stage::Init));
    add("waited", service.waited());
    return parts;
  }

  const RunModel& run_;
  const std::vector<PathStep> path_;
  const double names_;
  const std::vector<Panel> panels_;
  Svg svg_;
};

}  // namespace

std::vector<const ServiceRun*> slowestOf(const RunModel& run, std::size_t most) {
  std::vector<const ServiceRun*> slowest;
  for (const ServiceRun& service : run.services) {
    if (service.comingUp().length() > 0) slowest.push_back(&service);
  }
  std::stable_sort(slowest.begin(), slowest.end(), [](const auto* one, const auto* other) {
    return one->comingUp().length() > other->comingUp().length();
  });
  slowest.resize(std::min(most, slowest.size()));
  return slowest;
}

std::string timelineSvg(const RunModel& run) { return Chart(run).draw(); }

}  // namespace zerva
