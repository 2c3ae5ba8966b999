#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace zerva {

/**
 * Reads a reply in the protocol "zerva_svc_xml" without knowing what the method returns. Truth
 * values, whole and real numbers, texts and lists become those of JSON, nothing becomes null; bytes
 * become the text "bytes=" with hexadecimal digits, and numbers that JSON does not have "real=inf"
 * and the like, as they are written as arguments.
 *
 * @throws DecodeException when it is no such reply.
 */
nlohmann::ordered_json readXmlReply(const std::string& reply);

}  // namespace zerva
