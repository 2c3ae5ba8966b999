#include "framework/ProxyRequest.h"

ProxyRequest::~ProxyRequest() = default;
