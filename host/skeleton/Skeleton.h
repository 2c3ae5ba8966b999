#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace zerva {

/**
 * Writes the folder of a new service: interface, service, proxy, invoker, directives, a test and
 * what builds it. Leaves nothing behind when it fails.
 *
 * @param folder where to; made here. What is above it has to be there.
 * @param name what `whyNoServiceName` has nothing against.
 * @returns the files, as named below the folder.
 * @throws std::runtime_error when the folder is there already, or something cannot be written.
 */
std::vector<std::string> writeSkeleton(const std::filesystem::path& folder,
                                       const std::string& name);

}  // namespace zerva
