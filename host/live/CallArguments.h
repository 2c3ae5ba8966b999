#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "framework/Writable.h"

namespace zerva {

/**
 * Reads an argument of a call as it stands on the command line. `TYPE=VALUE` and `NAME:TYPE=VALUE`
 * say the type: bool, integer, real, text, bytes (hexadecimal digits) or list (JSON). The name is
 * for the reader only, arguments go by their order. Without a type the form tells it: true and
 * false, whole numbers, other numbers, lists and objects of JSON and texts of JSON in double
 * quotes; anything else is a text.
 *
 * @throws std::invalid_argument when the value is none of its type.
 */
nlohmann::ordered_json readArgument(const std::string& word);

/** The arguments of a call. */
class CallArguments final : public Writable {
 public:
  /** @throws std::invalid_argument as `readArgument`. */
  explicit CallArguments(const std::vector<std::string>& words);

  void write(ValueWriter& writer) const override;

 private:
  nlohmann::ordered_json values_;
};

}  // namespace zerva
