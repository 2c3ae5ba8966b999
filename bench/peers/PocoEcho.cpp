// A plug-in for Poco's class loader.

#include <Poco/ClassLibrary.h>

#include "bench/peers/PeerEcho.h"

class PocoEcho : public PeerEcho {};

POCO_BEGIN_MANIFEST(PeerEcho)
POCO_EXPORT_INTERFACE(PocoEcho, peerEchoName)
POCO_END_MANIFEST
