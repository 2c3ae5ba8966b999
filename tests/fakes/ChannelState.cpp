#include "tests/fakes/ChannelState.h"

#include <algorithm>
#include <vector>

namespace {

struct Directory {
  std::vector<CommsChannel::State*> open;
  std::vector<CommsChannel::State*> served;
};

Directory& directory() {
  static Directory instance;
  return instance;
}

}  // namespace

void CommsChannel::State::serve() {
  static int last = 0;
  served = true;
  servedAs = ++last;
  directory().served.push_back(this);
}

void CommsChannel::State::close() {
  closed = true;
  std::erase(directory().served, this);
  for (const Waiting& request : requests) finish(request, {}, "channel " + name + " was closed");
  requests.clear();
  for (auto& [id, outcome] : outstanding) {
    if (!outcome.finished) outcome = Outcome{std::nullopt, "channel " + name + " was closed", true};
  }
}

CommsChannel::State* CommsChannel::State::serving(const std::string& name) {
  for (State* state : directory().served) {
    if (state->name == name) return state;
  }
  return nullptr;
}

void CommsChannel::State::finish(const Waiting& request, const std::string& reply,
                                 const std::string& error) {
  const auto& open = directory().open;
  if (request.requestId == 0 || std::find(open.begin(), open.end(), request.asker) == open.end()) {
    return;
  }
  Outcome& outcome = request.asker->outstanding[request.requestId];
  outcome.finished = true;
  outcome.error = error;
  if (error.empty()) outcome.reply = reply;
}

void CommsChannel::State::opened(State* state) { directory().open.push_back(state); }

void CommsChannel::State::ended(State* state) {
  state->close();
  std::erase(directory().open, state);
}
