#pragma once

#include <chrono>
#include <functional>
#include <string>

/**
 * What the contract tests need and what each platform does in its own way. There are two sources
 * for this header; a test program is linked with one of them.
 */
namespace zerva::contract {

/** Puts the platform into the state of a new process. Called before each test. */
void startAfresh();

/**
 * Lets time go by and everybody else do what they have to do by then.
 *
 * @param time how much time goes by at least, by the platform's clock.
 * @param until what is expected to be true afterwards.
 * @returns whether it is.
 */
bool advanceAndSettle(std::chrono::milliseconds time, const std::function<bool()>& until);

/** As above, when no time has to go by. */
inline bool settle(const std::function<bool()>& until) {
  return advanceAndSettle(std::chrono::milliseconds(0), until);
}

/** @returns the path of a library that opens and exports one function, `contractAnswer`. */
std::string library();

/** The type of `contractAnswer`; it gives 42. */
using ContractAnswer = int (*)();

/** Makes starting this program succeed, where programs are not really started. */
void programExists(const std::string& program);

/** Makes starting this program fail, where programs are not really started. */
void programIsMissing(const std::string& program);

}  // namespace zerva::contract
