#include "src/ServiceConfigurator/ProxyChannelName.h"

#include <sys/time.h>

#include <cstdio>
#include <ctime>

namespace zerva {

std::string makeProxyChannelName(const std::string& svcChannel) {
  timeval now{};
  gettimeofday(&now, nullptr);
  const std::time_t seconds = now.tv_sec;
  char formattedTime[50] = {};
  std::strftime(formattedTime, sizeof formattedTime, "%Y-%m-%d.%H:%M:%S", std::localtime(&seconds));
  // The microseconds are padded with blanks, which are part of the name.
  char suffix[150] = {};
  std::snprintf(suffix, sizeof suffix, "_proxy-%s.%6d", formattedTime,
                static_cast<int>(now.tv_usec));
  return svcChannel + suffix;
}

}  // namespace zerva
