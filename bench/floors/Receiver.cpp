#include "bench/floors/Receiver.h"

namespace zerva::bench {

Receiver::Receiver() : thread_(&Receiver::run, this) {}

Receiver::~Receiver() { awaitAll(); }

/** An empty message is the last. */
void Receiver::run(void* self) {
  auto& channel = static_cast<Receiver*>(self)->channel_;
  while (!channel.take().empty()) {
  }
}

void Receiver::awaitAll() {
  if (ended_) return;
  channel_.put("");
  thread_.join();
  ended_ = true;
}

}  // namespace zerva::bench
