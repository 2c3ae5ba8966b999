#include "framework/ProtocolAdapter.h"

#include "runtime/libClientUtils/Lookups.h"

ProtocolAdapter::~ProtocolAdapter() { zerva::Lookups::somethingEnded(); }
