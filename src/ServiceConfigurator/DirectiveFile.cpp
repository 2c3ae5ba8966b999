#include <syslog.h>

#include <cstring>
#include <fstream>

#include "ServiceConfigurator.h"
#include "src/ServiceConfigurator/ConfiguratorLog.h"
#include "src/ServiceConfigurator/DirectiveLine.h"
#include "src/ServiceConfigurator/DirectiveTokeniser.h"
#include "src/ServiceConfigurator/LineNormaliser.h"
#include "src/ServiceConfigurator/StartProcess.h"

namespace {

using zerva::DirectiveFields;

void serviceInstance(ServiceConfigurator& configurator, const DirectiveFields& fields) {
  const auto& [flag, lib, creator, chan, ifc, ifcList] = fields;
  if (!lib.empty() && !creator.empty() && !chan.empty()) {
    CONFIGURATOR_LOG_PROGRESS("Creating Service. Lib: '%s' Creator: '%s' Chan: '%s' Ifc: '%s'",
                              lib.c_str(), creator.c_str(), chan.c_str(), ifcList.c_str());
    configurator.createServiceExecutor(lib, creator, chan, ifcList, flag);
  } else {
    CONFIGURATOR_LOG_PROGRESS(
        "Creating Service Instance. Error in parameters. Lib: '%s' Creator: '%s' Chan: '%s' Ifc: "
        "'%s'",
        lib.c_str(), creator.c_str(), chan.c_str(), ifcList.c_str());
  }
}

void serviceInfo(ServiceConfigurator& configurator, const DirectiveFields& fields) {
  const auto& [flag, lib, creator, chan, ifc, ifcList] = fields;
  if (!lib.empty() && !creator.empty() && !chan.empty()) {
    CONFIGURATOR_LOG_PROGRESS("Creating Service Info. Lib: '%s' Creator: '%s' Chan: '%s' Ifc: '%s'",
                              lib.c_str(), creator.c_str(), chan.c_str(), ifcList.c_str());
    configurator.createServiceExecutorDelayedInitialisation(lib, creator, chan, ifcList, flag);
  } else {
    CONFIGURATOR_LOG_PROGRESS(
        "Creating Service Info. Error in parameters. Lib: '%s' Creator: '%s' Chan: '%s' Ifc: '%s'",
        lib.c_str(), creator.c_str(), chan.c_str(), ifcList.c_str());
  }
}

/**
 * The interfaces of a legacy service begin at the fourth token whether there is a mode field or
 * not, so with one the creator's name is the first of them.
 */
void serviceLegacy(ServiceConfigurator& configurator, const DirectiveFields& fields,
                   const std::vector<std::string>& tokens) {
  const auto& [flag, lib, creator, chan, ifc, ifcList] = fields;
  if (!lib.empty() && !creator.empty()) {
    const std::string legacyIfcList = zerva::joinFrom(tokens, 3);
    const std::string text = "Creating Legacy Service. Lib: " + lib + " Creator: " + creator +
                             " Chan: <NONE!> Ifc: " + legacyIfcList;
    CONFIGURATOR_LOG_PROGRESS("%s", text.c_str());
    configurator.createService(lib, creator, legacyIfcList);
  } else {
    const std::string text = "Creating Legacy Service. Error in parameters. Lib: " + lib +
                             " Creator: " + creator + " Chan: " + chan + " Ifc: " + ifcList;
    CONFIGURATOR_LOG_PROGRESS("%s", text.c_str());
  }
}

// Of a record the third field is the interface and the fourth the protocol.

void invokerInfo(ServiceConfigurator& configurator, const DirectiveFields& fields) {
  const auto& [flag, lib, creator, interfaceName, protocol, rest] = fields;
  const std::string text = "Reg Invoker. Lib: " + lib + " Creator: " + creator +
                           " Ifc: " + interfaceName + "Prot: " + protocol;
  CONFIGURATOR_LOG_PROGRESS("%s", text.c_str());
  configurator.registerInvokerInfo(lib, creator, interfaceName, protocol);
}

void proxyInfo(ServiceConfigurator& configurator, const DirectiveFields& fields) {
  const auto& [flag, lib, creator, interfaceName, protocol, rest] = fields;
  const std::string text = "Reg Proxy. Lib: " + lib + " Creator: " + creator +
                           " Ifc: " + interfaceName + "Prot: " + protocol;
  CONFIGURATOR_LOG_PROGRESS("%s", text.c_str());
  configurator.registerProxyInfo(lib, creator, interfaceName, protocol);
}

void processLine(ServiceConfigurator& configurator, const char* line, int length) {
  const std::vector<std::string> tokens = configurator.parseDirectives(line, length, " ");
  if (tokens.empty()) {
    return;
  }
  const std::string& keyword = tokens.at(0);
  if (keyword == "comment") {
    return;
  }
  // Read for every keyword, known or not, so that too few fields are found in all of them.
  const DirectiveFields fields = zerva::readFields(tokens);
  if (keyword == "service_instance") {
    serviceInstance(configurator, fields);
  } else if (keyword == "service_legacy") {
    serviceLegacy(configurator, fields, tokens);
  } else if (keyword == "service_info") {
    serviceInfo(configurator, fields);
  } else if (keyword == "invoker_info") {
    invokerInfo(configurator, fields);
  } else if (keyword == "proxy_info") {
    proxyInfo(configurator, fields);
  } else if (keyword == "start_process") {
    zerva::startProcess(tokens);
  } else {
    const std::string text =
        std::string("ServiceConfigurator::processDirectives - invalid directive received: '") +
        line + "'";
    CONFIGURATOR_LOG_ERROR("%s", text.c_str());
  }
}

}  // namespace

void ServiceConfigurator::processDirectives(std::string fileName) {
  char buffer[512] = {};
  std::ifstream file(fileName);
  if (file.fail()) {
    syslog(LOG_EMERG, "ServiceConfigurator::processDirectives failed to open %s\n",
           fileName.c_str());
    CONFIGURATOR_LOG_ERROR("ServiceConfigurator::processDirectives failed to open %s\n",
                           fileName.c_str());
    return;
  }
  // The end of the file is the only way out: a line that does not fit into the buffer is for
  // whoever wrote it to find, since the rest of the file cannot be made sense of.
  while (!file.eof()) {
    file.getline(buffer, sizeof buffer, '\n');
    const std::size_t length = std::strcspn(buffer, "\r");
    buffer[length] = '\0';
    processLine(*this, buffer, static_cast<int>(length));
  }
}

std::vector<std::string> ServiceConfigurator::parseDirectives(const char* line, int length,
                                                              std::string separators) {
  return zerva::tokeniseDirective(line, length, separators);
}

void ServiceConfigurator::formatString(std::string& text) { zerva::normaliseLine(text); }
