#include "host/trace/RunModel.h"

#include <algorithm>

namespace zerva {

const char* nameOf(Stage stage) {
  switch (stage) {
    case Stage::Library:
      return "library";
    case Stage::Creator:
      return "creator";
    case Stage::Executor:
      return "executor";
    case Stage::Announcement:
      return "announcement";
    case Stage::Init:
      return "init";
    case Stage::Stop:
      return "stop";
    case Stage::Deletion:
      return "deletion";
  }
  return "";
}

namespace {

bool bringsUp(Stage stage) { return stage != Stage::Stop && stage != Stage::Deletion; }

}  // namespace

// A lazy service gets its channel when its line is read, and is made when it is needed; only the
// latter is its coming up, and it begins with the library.
Interval ServiceRun::comingUp() const {
  Interval all;
  for (const StageRun& run : stages) {
    if (!bringsUp(run.stage)) continue;
    if (isLazy() && all.end == 0 && run.stage != Stage::Library) continue;
    if (all.end == 0) all.begin = run.when.begin;
    all.end = std::max(all.end, run.when.end);
  }
  return all;
}

std::int64_t ServiceRun::total(Stage stage) const {
  std::int64_t sum = 0;
  for (const StageRun& run : stages) {
    if (run.stage == stage) sum += run.when.length();
  }
  return sum;
}

std::int64_t ServiceRun::waited() const {
  std::vector<Interval> all;
  const Interval making = comingUp();
  for (const WaitRun& wait : waits) {
    if (wait.when.begin >= making.begin && wait.when.end <= making.end) all.push_back(wait.when);
  }
  std::sort(all.begin(), all.end(),
            [](const Interval& one, const Interval& other) { return one.begin < other.begin; });
  std::int64_t sum = 0;
  std::int64_t reached = making.begin;
  for (const Interval& wait : all) {
    sum += std::max<std::int64_t>(0, wait.end - std::max(wait.begin, reached));
    reached = std::max(reached, wait.end);
  }
  return sum;
}

const ServiceRun* RunModel::find(const std::string& name, std::size_t occurrence) const {
  for (const ServiceRun& service : services) {
    if (service.name == name && occurrence-- == 0) return &service;
  }
  return nullptr;
}

}  // namespace zerva
