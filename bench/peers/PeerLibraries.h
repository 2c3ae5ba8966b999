#pragma once

#include <string>
#include <vector>

namespace zerva::bench {

/** A copy of a plug-in's library, and the name of the plug-in in it. */
struct PeerLibrary {
  std::string path;
  std::string name;
};

/**
 * Sees to it that there are copies of a library, each a library of its own to the loader, whose
 * plug-ins have different names.
 *
 * @param library file name of the one that is copied.
 */
std::vector<PeerLibrary> peerLibraries(const std::string& library, int count);

}  // namespace zerva::bench
