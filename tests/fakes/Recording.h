#pragma once

#include <string>
#include <vector>

namespace zerva::fakes {

/**
 * An object of the platform is being constructed: names it and records the call.
 *
 * @param kind the class.
 * @param arguments as they are to be seen in the trace.
 * @returns the object's name.
 * @throws what a hook throws; the object is then unknown.
 */
std::string constructed(const void* object, const std::string& kind,
                        const std::vector<std::string>& arguments);

/** Records a call of an operation of an object. */
void called(const void* object, const std::string& operation,
            const std::vector<std::string>& arguments, const std::string& result = {});

}  // namespace zerva::fakes
