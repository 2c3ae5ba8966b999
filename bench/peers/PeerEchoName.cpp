#include "bench/peers/PeerEcho.h"

// In a source of its own, so that it stands in the library once, as it is.
const char peerEchoName[] = "PeerEcho00000";
