#pragma once

#include <string>

namespace zerva {

/**
 * @param name a type's name as `std::type_info` has it.
 * @returns it as it is written in a source.
 */
std::string typeName(const char* name);

}  // namespace zerva
