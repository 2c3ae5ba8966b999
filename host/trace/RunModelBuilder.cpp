#include "host/trace/RunModelBuilder.h"

#include <algorithm>
#include <utility>

#include "host/trace/TraceReader.h"

namespace zerva {
namespace {

constexpr const char* kRegistryChannel = "/zerva/serviceregistry";

/** More than there can be of anything, and not too much to be added up. */
constexpr std::int64_t kMost = std::int64_t{1} << 48;

std::int64_t howMany(const TraceLine& line, const std::string& name) {
  return std::clamp<std::int64_t>(line.number(name), 0, kMost);
}

}  // namespace

RunModel RunModelBuilder::build(const std::vector<TraceLine>& lines) {
  if (lines.empty()) return std::move(model_);
  model_.whole = {lines.front().t, lines.back().t};
  model_.host.name = "the host";
  model_.host.kind = "host";
  for (const TraceLine& line : lines) take(line);
  finish(model_.whole.end);
  return std::move(model_);
}

void RunModelBuilder::take(const TraceLine& line) {
  takeOfProcess(line);
  takeOfUp(line);
  takeOfDown(line);
}

void RunModelBuilder::takeOfProcess(const TraceLine& line) {
  if (line.event == "trace") {
    model_.pid = line.number("pid");
    model_.bits = line.number("bits");
    model_.file = line.text("file");
  } else if (line.event == "phase") {
    phase(line);
  } else if (line.event == "process_started") {
    model_.processes.push_back({line.text("program"), line.number("pid"), line.t});
    model_.host.waits.push_back(
        {{line.begin(), line.t}, line.thread, "the start of " + line.text("program"), ""});
  } else if (line.event == "calls") {
    calls(line);
  } else if (line.event == "lost") {
    model_.lost = std::min(model_.lost + howMany(line, "events"), kMost);
  }
}

void RunModelBuilder::takeOfUp(const TraceLine& line) {
  const std::string& event = line.event;
  if (event == "service_declared") {
    declared(line);
  } else if (event == "creation_begins") {
    if (service(line.service) == nullptr) return;
    up_[line.thread].service = latest_[line.service];
    begin(line, up_[line.thread], Stage::Library);
  } else if (event == "creator_called") {
    if (Doing* const now = doing(line)) begin(line, *now, Stage::Creator);
  } else if (event == "channel_opened") {
    channelOpened(line);
  } else if (event == "executor_made") {
    executorMade(line);
  } else if (event == "service_recorded") {
    recorded(line);
  } else if (event == "announcement") {
    announced(line);
  } else if (event == "executor_started") {
    executorStarted(line);
  } else if (event == "init_begins") {
    initBegins(line);
  } else if (event == "init_ended") {
    initEnded(line);
  } else if (event == "failed") {
    failed(line);
  } else if (event == "first_request") {
    firstRequest(line);
  } else if (event == "question") {
    asked(line);
  } else if (event == "call") {
    const std::string method = line.text("method");
    waited(line,
           method.empty() ? "an answer of " + line.text("channel")
                          : method + " of " + line.text("channel"),
           line.text("channel"));
  } else if (event == "waited") {
    const bool creation = line.text("for") == "creation";
    waited(line, creation ? "the making of " + line.text("channel") : "a " + line.text("for"),
           line.text("channel"));
  }
}

void RunModelBuilder::takeOfDown(const TraceLine& line) {
  if (line.event == "executor_stopped" && stopping_) {
    endAll(down_, line);
    if (service(line.service) == nullptr) return;
    down_[line.thread] = {latest_[line.service], Stage::Stop, line.t, false};
  } else if (line.event == "services_stopped") {
    endAll(down_, line);
    stopping_ = false;
  } else if (line.event == "executor_deleted") {
    endAll(down_, line);
    if (service(line.service) == nullptr) return;
    down_[line.thread] = {latest_[line.service], Stage::Deletion, line.begin(), false};
  } else if (line.event == "library_closed") {
    libraryClosed(line);
    endAll(down_, line);
  } else if (line.event == "services_deleted") {
    endAll(down_, line);
  } else if (line.event == "library_opened" && line.service.empty() &&
             line.thread == model_.hostThread) {
    model_.host.stages.push_back({Stage::Library, {line.begin(), line.t}, line.thread});
    return;
  } else if (line.event != "phase") {
    return;
  }
  lastDeletion_ = line.t;
}

void RunModelBuilder::phase(const TraceLine& line) {
  const std::string phase = line.text("phase");
  hostWaits(line);
  if (phase == "starting") {
    model_.start.begin = line.t;
    model_.hostThread = line.thread;
    started_ = true;
  } else if (phase == "running") {
    model_.start.end = line.t;
    model_.running = true;
    up_.erase(line.thread);
  } else if (phase == "stopping") {
    model_.stop = Interval{line.t, model_.whole.end};
    stopping_ = true;
  } else if (phase == "ended" && model_.stop) {
    model_.stop->end = line.t;
  }
}

void RunModelBuilder::declared(const TraceLine& line) {
  ServiceRun run;
  run.name = line.service;
  run.interfaces = line.text("interfaces");
  run.interfaces.erase(run.interfaces.find_last_not_of(' ') + 1);
  run.library = line.text("library");
  run.kind = line.text("kind");
  run.declared = line.t;
  if (const auto before = up_.find(line.thread); before != up_.end()) end(line, before->second);
  latest_[line.service] = model_.services.size();
  model_.services.push_back(std::move(run));
  up_[line.thread] = {model_.services.size() - 1, std::nullopt, 0, false};
  begin(line, up_[line.thread], model_.services.back().isLazy() ? Stage::Executor : Stage::Library);
}

void RunModelBuilder::channelOpened(const TraceLine& line) {
  Doing* const now = doing(line);
  if (now == nullptr || now->stage != Stage::Creator) return;
  // The creator may open channels of its own.
  if (line.text("channel") == line.service) begin(line, *now, Stage::Executor);
}

void RunModelBuilder::executorMade(const TraceLine& line) {
  if (ServiceRun* const run = service(line.service)) run->mode = line.text("mode");
}

void RunModelBuilder::recorded(const TraceLine& line) {
  if (ServiceRun* const run = service(line.service)) run->type = line.text("type");
  Doing* const now = doing(line);
  if (now == nullptr || now->stage == Stage::Init) return;
  begin(line, *now, Stage::Announcement);
}

void RunModelBuilder::announced(const TraceLine& line) {
  waited(line, "the registry", line.text("channel"));
  Doing* const now = doing(line);
  if (now == nullptr) return;
  now->announced = true;
  if (model_.services[now->service].isLazy()) end(line, *now);
}

void RunModelBuilder::executorStarted(const TraceLine& line) {
  Doing* const now = doing(line);
  if (now == nullptr || !model_.services[now->service].isLazy()) return;
  begin(line, *now, Stage::Announcement);
}

void RunModelBuilder::initBegins(const TraceLine& line) {
  if (Doing* const now = doing(line)) begin(line, *now, Stage::Init);
}

void RunModelBuilder::initEnded(const TraceLine& line) {
  if (ServiceRun* const run = service(line.service)) run->up = line.t;
  if (Doing* const now = doing(line)) end(line, *now);
}

void RunModelBuilder::failed(const TraceLine& line) {
  const std::string error = line.text("error");
  if (line.text("what") != "service") {
    model_.failures.push_back(error);
    return;
  }
  if (ServiceRun* const run = service(line.service)) run->error = error;
  if (Doing* const now = doing(line)) end(line, *now);
}

void RunModelBuilder::firstRequest(const TraceLine& line) {
  ServiceRun* const run = service(line.service);
  if (run == nullptr) return;
  run->firstRequest = line.t;
  // From another process comes the name of a proxy's channel only.
  const std::string by = line.text("by");
  run->firstCaller = by.empty() ? line.text("from") : by;
}

/** The message that carries a question is told of too, just before; it is the same wait. */
void RunModelBuilder::asked(const TraceLine& line) {
  ServiceRun* const run = whoWaits(line);
  if (run == nullptr) return;
  std::erase_if(run->waits, [&](const WaitRun& wait) {
    return wait.thread == line.thread && wait.channel == kRegistryChannel &&
           wait.when.begin >= line.begin() && wait.when.end <= line.t;
  });
  waited(line, "the registry's answer to '" + line.text("text") + "'", kRegistryChannel);
}

void RunModelBuilder::waited(const TraceLine& line, const std::string& what,
                             const std::string& channel) {
  ServiceRun* const run = whoWaits(line);
  if (run == nullptr) return;
  run->waits.push_back({{line.begin(), line.t}, line.thread, what, channel});
}

void RunModelBuilder::calls(const TraceLine& line) {
  const CallRun run{line.service,
                    line.text("channel"),
                    line.text("interface"),
                    line.text("method"),
                    static_cast<std::uint64_t>(howMany(line, "count")),
                    static_cast<std::uint64_t>(howMany(line, "failures")),
                    {line.times.begin(), line.times.end()}};
  const auto [known, isNew] =
      calls_.try_emplace({run.caller, run.channel, run.interface, run.method}, model_.calls.size());
  if (isNew) {
    model_.calls.push_back(run);
  } else {
    model_.calls[known->second] = run;
  }
}

/** What was under way when the trace ended lasts up to there: it is where a process hung. */
void RunModelBuilder::finish(std::int64_t end) {
  TraceLine last;
  last.t = end;
  endAll(up_, last);
  endAll(down_, last);
  hostWaits(last);
  if (!started_) model_.start = {model_.whole.begin, model_.whole.begin};
  if (started_ && !model_.running) model_.start.end = end;
}

ServiceRun* RunModelBuilder::service(const std::string& name) {
  const auto found = latest_.find(name);
  return found == latest_.end() ? nullptr : &model_.services[found->second];
}

/** @returns the host, for what its thread does for no service. */
ServiceRun* RunModelBuilder::whoWaits(const TraceLine& line) {
  if (line.service.empty() && line.thread == model_.hostThread) return &model_.host;
  return service(line.service);
}

/** While it drains, and while it ends the programs that it started, the host waits. */
void RunModelBuilder::hostWaits(const TraceLine& line) {
  if (hostWait_) {
    model_.host.waits.push_back({{hostWait_->begin, line.t}, line.thread, hostWaitsFor_, ""});
    hostWait_.reset();
  }
  const std::string phase = line.text("phase");
  if (phase != "draining" && phase != "ending_processes") return;
  hostWait_ = Interval{line.t, line.t};
  hostWaitsFor_ = phase == "draining" ? "requests under way" : "the end of started programs";
}

/** A legacy service has no executor, only its library tells when it is deleted. */
void RunModelBuilder::libraryClosed(const TraceLine& line) {
  if (down_.contains(line.thread)) return;
  const std::string library = "/" + line.text("library");
  for (ServiceRun& run : model_.services) {
    if (run.kind != "legacy" || run.total(Stage::Deletion) > 0) continue;
    if (run.library.empty() || !library.ends_with("/" + run.library)) continue;
    run.stages.push_back({Stage::Deletion, {lastDeletion_, line.t}, line.thread});
    return;
  }
}

RunModelBuilder::Doing* RunModelBuilder::doing(const TraceLine& line) {
  const auto found = up_.find(line.thread);
  if (found == up_.end() || model_.services[found->second.service].name != line.service) {
    return nullptr;
  }
  return &found->second;
}

void RunModelBuilder::begin(const TraceLine& line, Doing& doing, Stage stage) {
  end(line, doing);
  doing.stage = stage;
  doing.since = line.t;
}

void RunModelBuilder::end(const TraceLine& line, Doing& doing) {
  if (!doing.stage) return;
  // A registry is not announced before its `init`, though there is a time between.
  const bool happened = doing.stage != Stage::Announcement || doing.announced;
  if (happened) {
    model_.services[doing.service].stages.push_back(
        {*doing.stage, {doing.since, line.t}, line.thread});
  }
  doing.stage.reset();
}

void RunModelBuilder::endAll(std::map<int, Doing>& all, const TraceLine& line) {
  for (auto& [thread, doing] : all) {
    TraceLine here = line;
    here.thread = thread;
    end(here, doing);
  }
  all.clear();
}

RunModel readRun(const std::string& path) {
  return RunModelBuilder(path).build(readTraceFile(path));
}

}  // namespace zerva
