#pragma once

#include <cstddef>
#include <vector>

#include "host/explain/LineExplanation.h"

namespace zerva {

/** What explained lines come to. Services, records and programs are those that work. */
struct ExplanationSum {
  /** Services that are created at once, with a channel. */
  std::size_t immediate = 0;
  std::size_t lazy = 0;
  std::size_t legacy = 0;
  std::size_t records = 0;
  std::size_t programs = 0;
  /** Lines that do not do what they ask for. */
  std::size_t failed = 0;
  /** Lines that ask for something and are not read. */
  std::size_t notRead = 0;

  std::size_t services() const { return immediate + lazy + legacy; }
  bool isGood() const { return failed + notRead == 0; }
};

ExplanationSum sumOf(const std::vector<LineExplanation>& lines);

}  // namespace zerva
