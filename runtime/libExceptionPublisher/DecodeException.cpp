#include "framework/DecodeException.h"

DecodeException::DecodeException(const std::string& message) : ZervaException(message) {}

DecodeException::DecodeException(const DecodeException& other) noexcept = default;

DecodeException& DecodeException::operator=(const DecodeException& other) noexcept = default;

DecodeException::~DecodeException() = default;
