#pragma once

#include <string>

#include "framework/Export.h"

/** What the plug-ins of other frameworks do. */
class ZERVA_EXPORT PeerEcho {
 public:
  virtual ~PeerEcho() = default;
  virtual std::string echo(const std::string& data) { return data; }
};

/** Under which name a plug-in is found. Each copy of a library has digits of its own in it. */
extern const char peerEchoName[];
