#pragma once

#include <string>

#include "framework/Export.h"

/**
 * @returns the version of the framework, for instance "0.1.0": the last argument of every process
 *     that a directive starts. Never blocks.
 */
ZERVA_EXPORT std::string ZervaVersion();
