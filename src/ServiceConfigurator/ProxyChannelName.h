#pragma once

#include <string>

namespace zerva {

/**
 * @returns the name of a proxy's private channel: that of the service's channel, with the local
 *     time of day. Called by one thread at a time.
 */
std::string makeProxyChannelName(const std::string& svcChannel);

}  // namespace zerva
