#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/live/CallsSoFar.h"
#include "host/live/ProcessStatus.h"

namespace zerva {

class LiveBus;
struct BusProcess;

/** What came of asking a process how it is. */
struct Answer {
  int process = 0;
  /** What it said; nothing when it said nothing. */
  std::optional<ProcessStatus> status;
  /** The calls that it made; nothing when it was not asked for them, or said nothing of them. */
  std::optional<CallsSoFar> calls;
  /** Whether it is one that tells how it is: a host that was asked to. */
  bool tells = false;
  /** Why something did not come, of one that tells: a line that may be shown. */
  std::string why;
  /** The channels that it serves. */
  std::vector<std::string> channels;
};

/** What processes are asked for. */
enum class Question { Status, StatusAndCalls };

/**
 * Asks all processes of the bus, as many at once as `doAtOnce` does, and waits for the last one. No
 * more than requests wait for their answers.
 */
std::vector<Answer> askAll(const LiveBus& bus, Question question = Question::Status);

/** @returns whether any service has something queued, so that a second look tells more. */
bool somethingIsQueued(const std::vector<Answer>& answers);

/** Notes which services are stuck: something was queued before and is now, and none was taken. */
void markStuck(std::vector<Answer>& now, const std::vector<Answer>& before);

/** @returns whether a service has a name: it has such an interface or such a channel. */
bool isNamed(const ServiceStatus& service, const std::string& name);

/**
 * @returns whether something is wrong that a person should look at.
 * @param name looks at services with this name only; empty for all, and for processes, too.
 */
bool showTrouble(const std::vector<Answer>& answers, const std::string& name);

}  // namespace zerva
