#include "framework/Invoker.h"

#include "framework/TargetInvoker.h"

Invoker::~Invoker() = default;

TargetInvoker::~TargetInvoker() = default;
