#pragma once

#include <string>
#include <vector>

/** A service that hands a call on to others. As many interfaces as wanted may mean it. */
class Relay {
 public:
  /**
   * Goes a way: finds the service of the first interface and calls it with the rest. A word that is
   * no interface's name is done instead: "hold" waits until the service is stopped, and then logs
   * whether the interfaces behind it are found and whether a timer can be started; "throw" throws.
   *
   * @returns the ids of the processes that the call was in, this one first.
   */
  virtual std::vector<int> pass(const std::vector<std::string>& way) = 0;

 protected:
  ~Relay() = default;
};
