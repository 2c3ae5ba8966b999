#include "framework/ProtocolAdapter.h"

ProtocolAdapter::~ProtocolAdapter() = default;
