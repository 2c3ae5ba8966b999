#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace zerva {

/** The fields of a directive line by their usual meaning, after the optional mode field. */
struct DirectiveFields {
  /** False for "ST": one request after the other. */
  bool flag;
  std::string lib;
  std::string creator;
  std::string chan;
  std::string ifc;
  /** `ifc` and everything after it. */
  std::string ifcList;
};

/** Joins the tokens from one position to the last with single blanks. */
std::string joinFrom(const std::vector<std::string>& tokens, std::size_t first);

/**
 * @param tokens a cut line that is no comment.
 * @throws std::out_of_range when the line has a mode field and fewer than four others.
 */
DirectiveFields readFields(const std::vector<std::string>& tokens);

}  // namespace zerva
