#pragma once

namespace zerva {

/**
 * Tells whether this process is to tell others how it is: when it was asked to, or when the
 * environment says so. Then the environment says so from here on, so that the hosts that this one
 * starts do as well. Called before any thread is made.
 *
 * @param asked whether it was asked to.
 */
bool statusWanted(bool asked);

}  // namespace zerva
