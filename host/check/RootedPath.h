#pragma once

#include <string>

namespace zerva {

/**
 * Where a file of another machine's tree is on this one. Links in the tree are followed as that
 * machine would, so an absolute one stays in the tree.
 *
 * @param root the tree; empty for this machine, and then the path is returned as it is.
 * @param path the file as the other machine names it; relative ones begin at the root.
 */
std::string rootedPath(const std::string& root, const std::string& path);

}  // namespace zerva
