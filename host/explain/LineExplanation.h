#pragma once

#include <string>
#include <vector>

#include "host/check/Finding.h"
#include "host/check/ParsedLine.h"

namespace zerva {

/** What becomes of a line in a run. */
enum class Outcome {
  /** It does what it asks for. */
  Done,
  /** It asks for nothing: it is empty, or a comment. */
  Nothing,
  /** It does not do what it asks for, or not all of it. */
  Failed,
  /** The start does not get as far. */
  NotRead,
};

/** @returns "done", "nothing", "failed" or "not_read". */
const char* outcomeName(Outcome outcome);

/** What a line does, in words. */
struct LineExplanation {
  /** The line; belongs to whoever had it explained. */
  const ParsedLine* line = nullptr;
  Outcome outcome = Outcome::Done;
  /** What it does on the whole: a sentence without its subject, the line. */
  std::string title;
  /** What happens one after the other, a sentence or two each. */
  std::vector<std::string> steps;
  /** The file that is opened or started; empty when there is none, or nobody looked. */
  std::string path;
  /** What the look-over finds wrong with it: errors and warnings. */
  std::vector<Finding> findings;
};

}  // namespace zerva
