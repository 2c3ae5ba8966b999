#pragma once

#include <functional>
#include <utility>

#include "framework/Threadable.h"

namespace zerva {

/** A thread body that runs a function. */
class FunctionBody : public Threadable {
 public:
  explicit FunctionBody(std::function<void()> function) : function_(std::move(function)) {}
  void run() override { function_(); }

 private:
  const std::function<void()> function_;
};

}  // namespace zerva
