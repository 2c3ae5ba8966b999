#pragma once

#include <string_view>

#include "framework/ProtocolAdapter.h"

namespace zerva::fuzz {

/**
 * Has an adapter read bytes as a call and as a reply. It must give values or a `DecodeException`,
 * and what was read must come back the same when it is written and read again.
 *
 * @param input a line with the shape of the arguments and of the result, and then the bytes.
 */
void checkCallBytes(ProtocolAdapter& adapter, std::string_view input);

}  // namespace zerva::fuzz
