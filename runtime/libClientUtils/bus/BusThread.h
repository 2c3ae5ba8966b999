#pragma once

#include <asio/io_context.hpp>
#include <memory>

#include "framework/Threadable.h"

namespace zerva {

/**
 * The one thread on which connections are accepted, what is left is taken up again later, and all
 * is read that no waiting thread reads.
 */
class BusThread final : public Threadable {
 public:
  /** @param context what the thread runs. */
  explicit BusThread(std::shared_ptr<asio::io_context> context);
  ~BusThread() override;

  /** Begins. @returns false when there is no thread to be had; that is logged. */
  bool start();

  /**
   * Ends the thread and waits for it. Afterwards the caller does what is the thread's to do.
   * May be repeated.
   */
  void stop();

  void run() override;

 private:
  const std::shared_ptr<asio::io_context> context_;
};

}  // namespace zerva
