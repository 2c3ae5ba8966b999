#include "host/trace/CriticalPath.h"

#include <algorithm>
#include <map>

namespace zerva {
namespace {

/** Services can wait for each other in a circle; the path does not go round. */
constexpr int kDeepest = 32;

/** A stage or a wait of a service, on the way through the time. */
struct Piece {
  Interval when;
  std::optional<std::size_t> service;
  const StageRun* stage;
  const WaitRun* wait;
};

class Walk {
 public:
  explicit Walk(const RunModel& run) : run_(run) {}

  std::vector<PathStep> steps;

  /** Fills an interval with what a thread did for the services that it brought up. */
  void thread(int thread, Interval within, std::optional<std::size_t> only, int depth) {
    std::int64_t at = within.begin;
    for (const Piece& piece : stagesOf(thread, only)) {
      const Interval part = cut(piece.when, {at, within.end});
      if (part.length() <= 0) continue;
      between(thread, {at, part.begin}, only, depth);
      stage(piece, part, depth);
      at = part.end;
    }
    between(thread, {at, within.end}, only, depth);
  }

 private:
  static Interval cut(Interval what, Interval within) {
    return {std::max(what.begin, within.begin), std::min(what.end, within.end)};
  }

  void add(PathStep step) {
    if (step.when.length() > 0) steps.push_back(std::move(step));
  }

  std::vector<Piece> stagesOf(int thread, std::optional<std::size_t> only) const {
    std::vector<Piece> pieces;
    for (std::size_t place = 0; place < run_.services.size(); ++place) {
      if (only && *only != place) continue;
      for (const StageRun& stage : run_.services[place].stages) {
        if (stage.thread == thread && stage.stage != Stage::Stop &&
            stage.stage != Stage::Deletion) {
          pieces.push_back({stage.when, place, &stage, nullptr});
        }
      }
    }
    sort(pieces);
    return pieces;
  }

  static void sort(std::vector<Piece>& pieces) {
    std::stable_sort(pieces.begin(), pieces.end(), [](const Piece& one, const Piece& other) {
      return one.when.begin < other.when.begin;
    });
  }

  /** Fills the time between the stages of services: the host's own. */
  void between(int thread, Interval within, std::optional<std::size_t> only, int depth) {
    if (only) return add({within, only, std::nullopt, {}});
    fill(run_.host, thread, {within, std::nullopt, std::nullopt, {}}, depth);
  }

  void stage(const Piece& piece, Interval within, int depth) {
    fill(run_.services[*piece.service], piece.stage->thread,
         {within, piece.service, piece.stage->stage, {}}, depth);
  }

  /** Fills a time with the waits of the one that it belongs to, and with its work. */
  void fill(const ServiceRun& service, int thread, PathStep work, int depth) {
    std::vector<Piece> waits;
    for (const WaitRun& wait : service.waits) {
      if (wait.thread == thread) waits.push_back({wait.when, work.service, nullptr, &wait});
    }
    sort(waits);
    const Interval within = work.when;
    std::int64_t at = within.begin;
    for (const Piece& next : waits) {
      const Interval part = cut(next.when, {at, within.end});
      if (part.length() <= 0) continue;
      work.when = {at, part.begin};
      add(work);
      wait(next, part, depth);
      at = part.end;
    }
    work.when = {at, within.end};
    add(work);
  }

  /** Fills a wait with what was done meanwhile to make the service that it was for. */
  void wait(const Piece& piece, Interval within, int depth) {
    const PathStep waiting{within, piece.service, std::nullopt, piece.wait->what};
    const auto made = run_.find(piece.wait->channel);
    if (made == nullptr || depth >= kDeepest) return add(waiting);
    const Interval making = cut(made->comingUp(), within);
    const int maker = making.length() > 0 ? makerOf(*made, making) : piece.wait->thread;
    if (maker == piece.wait->thread) return add(waiting);
    const auto place = static_cast<std::size_t>(made - run_.services.data());
    add({{within.begin, making.begin}, piece.service, std::nullopt, piece.wait->what});
    thread(maker, making, place, depth + 1);
    add({{making.end, within.end}, piece.service, std::nullopt, piece.wait->what});
  }

  static int makerOf(const ServiceRun& service, Interval within) {
    int thread = 0;
    for (const StageRun& stage : service.stages) {
      if (cut(stage.when, within).length() > 0) thread = stage.thread;
    }
    return thread;
  }

  const RunModel& run_;
};

}  // namespace

std::vector<PathStep> criticalPath(const RunModel& run) {
  Walk walk(run);
  walk.thread(run.hostThread, run.start, std::nullopt, 0);
  return std::move(walk.steps);
}

std::vector<PathShare> sharesOf(const std::vector<PathStep>& path) {
  std::map<std::optional<std::size_t>, std::int64_t> times;
  for (const PathStep& step : path) times[step.service] += step.when.length();
  std::vector<PathShare> shares;
  for (const auto& [service, time] : times) shares.push_back({service, time});
  std::stable_sort(shares.begin(), shares.end(), [](const PathShare& one, const PathShare& other) {
    return one.time > other.time;
  });
  return shares;
}

}  // namespace zerva
