#include "framework/Invoker.h"

#include "framework/TargetInvoker.h"
#include "runtime/libClientUtils/Lookups.h"

Invoker::~Invoker() { zerva::Lookups::somethingEnded(); }

TargetInvoker::~TargetInvoker() = default;
