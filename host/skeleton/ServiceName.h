#pragma once

#include <string>

namespace zerva {

/**
 * Looks a name over that a new service is to have. Class names, file names, a channel and the words
 * of a directive are made of it.
 *
 * @returns why it cannot be one, for people; empty when it can.
 */
std::string whyNoServiceName(const std::string& name);

}  // namespace zerva
