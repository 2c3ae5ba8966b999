#include "framework/Service.h"

void Service::run() {}

Service::~Service() = default;
