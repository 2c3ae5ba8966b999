#pragma once

#include <functional>
#include <memory>
#include <string>

namespace zerva {

class StatusBoard;

/**
 * Serves how this process is, as long as it lives. The service has an executor, a thread, a pool
 * and a context of its own and is in no repository: the services of the directive file find nothing
 * that would not be there without it, and nothing that they do keeps it from answering.
 */
class StatusServing {
 public:
  /**
   * @param board not owned.
   * @param waitsFor what the process waits for, for people; any thread.
   */
  StatusServing(const StatusBoard& board, std::function<std::string()> waitsFor);

  /** Waits for an answer that is being given. */
  ~StatusServing();
  StatusServing(const StatusServing&) = delete;
  StatusServing& operator=(const StatusServing&) = delete;

  /** @returns the channel that it serves. */
  static std::string channel();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace zerva
