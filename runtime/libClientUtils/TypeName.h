#pragma once

#include <string>
#include <typeinfo>

namespace zerva {

/** @returns the type's name as it is written in a source. */
std::string typeName(const std::type_info& type);

}  // namespace zerva
