#pragma once

#include <string>

namespace zerva::bench {

/** @returns the directory in which this program's build is. */
std::string buildDirectory();

/** @returns where the copies are. */
std::string copiesDirectory();

/** @returns the file name of a copy; the first is 0. */
std::string copyName(int number);

/**
 * Sees to it that there are so many copies of the library of the benchmarks' service. Each is a
 * file of its own and without a name inside, so that the loader takes it for a library of its own.
 */
void makeCopies(int count);

}  // namespace zerva::bench
