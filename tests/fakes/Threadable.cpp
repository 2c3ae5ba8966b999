#include "framework/Threadable.h"

#include "tests/fakes/Recording.h"

struct Threadable::State {};

Threadable::Threadable() : state_(new State()) {}
Threadable::~Threadable() = default;

void Threadable::waitForThreadCompletion() {
  zerva::fakes::called(this, "waitForThreadCompletion", {});
}

const std::shared_ptr<Threadable::State>& Threadable::threadState() const { return state_; }
