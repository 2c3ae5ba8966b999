#include "FrameworkException.h"

FrameworkException::FrameworkException(const std::string& message) : ZervaException(message) {}

// Here, so that the exception's type is in this library alone.
FrameworkException::~FrameworkException() = default;
