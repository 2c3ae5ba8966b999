#pragma once

#include <nlohmann/json.hpp>

#include "host/live/ProcessStatus.h"

namespace zerva {

/** @returns a process as JSON, the members in an order for people. */
nlohmann::ordered_json toJson(const ProcessStatus& status);

/** @returns JSON as text; bytes that are no UTF-8 are replaced. @param indent -1 for one line. */
std::string textOf(const nlohmann::ordered_json& json, int indent);

}  // namespace zerva
