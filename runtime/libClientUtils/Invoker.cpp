#include "framework/Invoker.h"

Invoker::~Invoker() = default;
