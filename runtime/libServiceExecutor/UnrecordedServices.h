#pragma once

class Executable;

namespace zerva {

/**
 * Keeps a service that outlives its executor because no repository knows it: nobody may delete it,
 * and leak checkers find it here. Null is not kept.
 */
void keepUnrecorded(Executable* service);

}  // namespace zerva
