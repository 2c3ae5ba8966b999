#pragma once

#include <string>
#include <vector>

namespace zerva::fakes {

/**
 * The objects that live on the recording platform, by address. Each has a name made of its class
 * and a number, in order of construction: Dll#1, Dll#2, Service#1, ...
 *
 * The memory of an object that ended is kept until `clear`, so that a second deletion is reported
 * as a failure of the test instead of corrupting the heap, and so that no address is used twice in
 * one test.
 */
class Objects {
 public:
  /** A new object of a class; its name is made. @returns the name. */
  static std::string born(const void* object, const std::string& kind);

  /** Another address of an object that has a name: a base class that lies elsewhere in it. */
  static void alias(const void* address, const void* object);

  /** Gives an address a name of the test's choice. It counts as no living object. */
  static void call(const void* address, const std::string& name);

  /** @returns the name; "null" for null, "unknown" for an address that nobody has named. */
  static std::string name(const void* address);

  /** Starts the numbers at 1 again, for objects that are made from here on. */
  static void renumber();

  /** An object whose construction failed. */
  static void unborn(const void* object);

  /**
   * An object is being destroyed: records its end.
   *
   * @returns false, after reporting it as a failure of the test, when it had ended before.
   */
  static bool died(const void* object);

  /** @returns whether an object of the platform lives at the address. */
  static bool isAlive(const void* object);

  /** @returns the names of the objects that were made and have not ended, in no special order. */
  static std::vector<std::string> living();

  /** Forgets all; what still lives stays reachable, so that leak checks do not count it again. */
  static void clear();
};

}  // namespace zerva::fakes
