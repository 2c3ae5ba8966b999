#pragma once

#include <string>
#include <vector>

#include "host/check/CheckSubject.h"
#include "host/explain/LineExplanation.h"

namespace zerva {

/** What a file does in a run, line by line. */
struct FileExplanation {
  std::string path;
  /** All of its lines, in order. */
  std::vector<LineExplanation> lines;
  /** The line with which reading ends before the end of the file; null when none does. */
  const ParsedLine* end = nullptr;
  /** Whether it needs a registry that another process has. */
  bool registryElsewhere = false;
};

/**
 * Says what each line of a file does.
 *
 * @param subject has that file, and its libraries and programs when somebody looked; outlives the
 *     explanation.
 */
FileExplanation explainFile(const CheckSubject& subject);

}  // namespace zerva
