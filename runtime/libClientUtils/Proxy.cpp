#include "framework/Proxy.h"

void Proxy::init(SvcRTEContext* /*context*/) {}

Proxy::~Proxy() = default;
