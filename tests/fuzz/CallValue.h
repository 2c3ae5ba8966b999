#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "framework/ValueReader.h"
#include "framework/ValueWriter.h"

namespace zerva::fuzz {

/**
 * What a method takes or gives, as its declaration says it; a value is read by it, and never by
 * what the bytes say of themselves. It is written as a text:
 *
 *     n b i u r t   nothing, a truth value, an integer, an unsigned one, a number, a text
 *     *X            a list of any number of X
 *     (X Y ...)     a list of just these
 */
struct CallShape {
  /** 'n' to 't', '*' or '('. */
  char kind;
  std::vector<CallShape> items;
};

/** @returns the shape, or nothing when the text is none or is nested deeper than types are. */
std::optional<CallShape> parseShape(std::string_view text);

/** A value of some shape. */
struct CallValue {
  char kind;
  std::uint64_t number = 0;  // of all kinds of integers
  double real = 0;
  std::string text{};
  std::vector<CallValue> items{};

  /** What is not a number equals what is not a number. */
  bool operator==(const CallValue& other) const;
};

/**
 * Reads a value as a method's code does.
 *
 * @param most how many values a list may hold at most.
 */
CallValue readValue(ValueReader& reader, const CallShape& shape, std::size_t most);

void writeValue(ValueWriter& writer, const CallValue& value);

}  // namespace zerva::fuzz
