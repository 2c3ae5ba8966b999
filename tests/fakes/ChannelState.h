#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "framework/CommsChannel.h"

/** A request, or a message that nobody answers, on its way to the channel that serves it. */
struct Waiting {
  std::string from;
  CommsChannel::State* asker;
  std::string data;
  /** 0 when no reply is wanted. */
  std::uint32_t requestId;
};

/** What became of a request. */
struct Outcome {
  std::optional<std::string> reply;
  std::string error;
  bool finished = false;
};

struct CommsChannel::State {
  std::string name;
  CCInterceptorDispatcher* dispatcher;
  bool closed = false;
  /** Set while an executor serves the channel. */
  bool served = false;
  /** Tells this serving of the name from all others. */
  int servedAs = 0;
  std::deque<Waiting> requests;
  std::map<std::uint32_t, Outcome> outstanding;

  /** Takes part in name look-ups from here on; of two with one name the first gets the requests. */
  void serve();

  /** Ends serving: everything that waits here, or is still to come, fails. */
  void close();

  /** @returns the open channel that serves a name, or null. */
  static State* serving(const std::string& name);

  /** Ends a request of `asker`, if that channel is still there. */
  static void finish(const Waiting& request, const std::string& reply, const std::string& error);

  static void opened(State* state);
  static void ended(State* state);
};
