#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "host/trace/RunModel.h"
#include "host/trace/TraceLine.h"

namespace zerva {

/** Puts together what the lines of a trace tell of the services of a process. */
class RunModelBuilder {
 public:
  /** @param trace the file's name. */
  explicit RunModelBuilder(const std::string& trace) { model_.trace = trace; }

  /** Takes the lines of a trace in the order of time. @returns what they tell. Called once. */
  RunModel build(const std::vector<TraceLine>& lines);

 private:
  /** What a thread does for which service. */
  struct Doing {
    std::size_t service = 0;
    std::optional<Stage> stage;
    std::int64_t since = 0;
    bool announced = false;
  };

  void take(const TraceLine& line);
  void takeOfProcess(const TraceLine& line);
  void takeOfUp(const TraceLine& line);
  void takeOfDown(const TraceLine& line);
  void phase(const TraceLine& line);
  void declared(const TraceLine& line);
  void channelOpened(const TraceLine& line);
  void recorded(const TraceLine& line);
  void announced(const TraceLine& line);
  void executorMade(const TraceLine& line);
  void executorStarted(const TraceLine& line);
  void initBegins(const TraceLine& line);
  void initEnded(const TraceLine& line);
  void failed(const TraceLine& line);
  void firstRequest(const TraceLine& line);
  void asked(const TraceLine& line);
  void waited(const TraceLine& line, const std::string& what, const std::string& channel);
  void calls(const TraceLine& line);
  void finish(std::int64_t end);

  ServiceRun* service(const std::string& name);
  ServiceRun* whoWaits(const TraceLine& line);
  void hostWaits(const TraceLine& line);
  void libraryClosed(const TraceLine& line);
  /** @returns what the line's thread does for the line's service; null for nothing. */
  Doing* doing(const TraceLine& line);
  void begin(const TraceLine& line, Doing& doing, Stage stage);
  void end(const TraceLine& line, Doing& doing);
  void endAll(std::map<int, Doing>& all, const TraceLine& line);

  RunModel model_;
  std::map<std::string, std::size_t> latest_;  // of the services with a name, the last one declared
  std::map<int, Doing> up_;
  std::map<int, Doing> down_;
  std::map<std::tuple<std::string, std::string, std::string, std::string>, std::size_t> calls_;
  std::optional<Interval> hostWait_;  // under way, with what it is for
  std::string hostWaitsFor_;
  std::int64_t lastDeletion_ = 0;
  bool started_ = false;
  bool stopping_ = false;
};

/** Reads a trace and puts it together. @throws TraceError as `readTraceFile`. */
RunModel readRun(const std::string& path);

}  // namespace zerva
