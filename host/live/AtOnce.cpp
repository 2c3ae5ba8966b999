#include "host/live/AtOnce.h"

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

#include "runtime/libClientUtils/ExceptionText.h"

namespace zerva {

void doAtOnce(std::size_t count, const std::function<void(std::size_t)>& work) {
  std::atomic<std::size_t> next{0};
  const auto doSome = [&] {
    for (std::size_t number = next++; number < count; number = next++) work(number);
  };
  std::vector<std::jthread> others;
  // Where there is no thread any more, those that there are do it all.
  static_cast<void>(exceptionOf([&] {
    while (others.size() + 1 < std::min(count, kMostAtOnce)) others.emplace_back(doSome);
  }));
  doSome();
}

}  // namespace zerva
