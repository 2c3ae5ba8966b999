#pragma once

#include <functional>

namespace zerva {

/**
 * Lets one allocation of the calling thread fail: the nth from here on, the next one when it is 1;
 * none when it is 0. Of a program that is linked with NoMemory.cpp.
 */
void letAllocationFail(int nth);

/** @returns whether that allocation is still to come. */
bool allocationIsToFail();

/** Does something before each allocation of the calling thread; nothing for null. */
void beforeEachAllocation(const std::function<void()>* work);

}  // namespace zerva
