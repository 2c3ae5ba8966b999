#include "framework/FwkTimer.h"

#include "runtime/libFwkTimer/TimerCore.h"

struct FwkTimer::State {
  explicit State(FrameworkContext* context) : core(std::make_shared<zerva::TimerCore>(context)) {}

  const std::shared_ptr<zerva::TimerCore> core;
};

FwkTimer::FwkTimer(FrameworkContext* context) : state_(std::make_unique<State>(context)) {}

FwkTimer::~FwkTimer() {
  shutdown();
  state_->core->end();
}

int FwkTimer::createTimer(Executable* owner, int period) {
  return state_->core->create(owner, period);
}

bool FwkTimer::startTimer(int id) { return state_->core->start(id, false); }

bool FwkTimer::stopTimer(int id) { return state_->core->stop(id); }

bool FwkTimer::resetTimer(int id) { return state_->core->start(id, true); }

bool FwkTimer::deleteTimer(int id) { return state_->core->remove(id); }

bool FwkTimer::timerRunning(int id) { return state_->core->running(id); }

void FwkTimer::shutdown() { state_->core->shutdown(); }
