#include "host/ConfiguratorEvent.h"

#include <array>
#include <charconv>
#include <optional>
#include <string_view>

namespace zerva {
namespace {

using Kind = ConfiguratorEvent::Kind;

/** Reads a text piece by piece: fixed words, and what stands between them. */
class Reader {
 public:
  explicit Reader(std::string_view text) : rest_(text) {}

  bool skip(std::string_view words) {
    if (!good_ || !rest_.starts_with(words)) return good_ = false;
    rest_.remove_prefix(words.size());
    return true;
  }

  std::string until(std::string_view words) {
    const std::size_t end = good_ ? rest_.find(words) : std::string_view::npos;
    return take(end, words.size());
  }

  std::string untilLast(std::string_view words) {
    const std::size_t end = good_ ? rest_.rfind(words) : std::string_view::npos;
    return take(end, words.size());
  }

  std::string rest() { return good_ ? std::string(rest_) : std::string(); }

  bool good() const { return good_; }

 private:
  std::string take(std::size_t end, std::size_t width) {
    if (end == std::string_view::npos) {
      good_ = false;
      return {};
    }
    std::string piece(rest_.substr(0, end));
    rest_.remove_prefix(end + width);
    return piece;
  }

  std::string_view rest_;
  bool good_ = true;
};

bool readQuotedLine(const std::string& text, std::string_view beginning, Kind kind,
                    ConfiguratorEvent& event) {
  Reader reader(text);
  reader.skip(beginning);
  event.library = reader.until("' Creator: '");
  event.creator = reader.until("' Chan: '");
  event.channel = reader.until("' Ifc: '");
  event.interfaces = reader.untilLast("'");
  if (reader.good()) event.kind = kind;
  return reader.good();
}

bool readLegacyLine(const std::string& text, ConfiguratorEvent& event) {
  Reader reader(text);
  reader.skip("Creating Legacy Service. Lib: ");
  event.library = reader.until(" Creator: ");
  event.creator = reader.until(" Chan: <NONE!> Ifc: ");
  event.interfaces = reader.rest();
  if (reader.good()) event.kind = Kind::LegacyLine;
  return reader.good();
}

/** Reads "S.Ms": seconds and milliseconds, the latter without leading zeros. */
std::optional<std::chrono::milliseconds> readDuration(const std::string& text) {
  const std::size_t dot = text.find('.');
  if (dot == std::string::npos) return std::nullopt;
  long long seconds = 0;
  long long milliseconds = 0;
  const char* begin = text.data();
  const bool read =
      std::from_chars(begin, begin + dot, seconds).ec == std::errc() &&
      std::from_chars(begin + dot + 1, begin + text.size(), milliseconds).ec == std::errc();
  if (!read) return std::nullopt;
  return std::chrono::milliseconds{seconds * 1000 + milliseconds};
}

bool readInitTook(const std::string& text, ConfiguratorEvent& event) {
  Reader reader(text);
  reader.skip("Service Configurator: For ifc = '");
  event.interfaces = reader.untilLast("' init() took ");
  const auto duration = readDuration(reader.until("s using CLOCK_MONOTONIC"));
  if (!reader.good() || !duration) return false;
  event.duration = *duration;
  event.kind = Kind::InitTook;
  return true;
}

bool readProcess(const std::string& text, std::string_view beginning, Kind kind,
                 ConfiguratorEvent& event) {
  Reader reader(text);
  reader.skip(beginning);
  event.program = reader.untilLast("'");
  if (reader.good()) event.kind = kind;
  return reader.good();
}

bool readRecord(const std::string& text, std::string_view beginning, const char* role,
                ConfiguratorEvent& event) {
  Reader reader(text);
  reader.skip(beginning);
  event.library = reader.until(" Creator: ");
  event.creator = reader.until(" Ifc: ");
  // Nothing stands between the interface and the word.
  event.interfaces = reader.untilLast("Prot: ");
  event.protocol = reader.rest();
  event.role = role;
  if (reader.good()) event.kind = Kind::Record;
  return reader.good();
}

bool readLookup(const std::string& text, ConfiguratorEvent& event) {
  Reader service(text);
  service.skip("findService called for interface: ");
  if (service.good()) {
    event.role = "service";
    event.interfaces = service.rest();
    event.kind = Kind::Lookup;
    return true;
  }
  Reader proxy(text);
  proxy.skip("ServiceConfigurator::findProxy( interface='");
  event.interfaces = proxy.untilLast("' svcChannel='");
  event.channel = proxy.untilLast("'");
  if (proxy.good()) {
    event.role = "proxy";
    event.kind = Kind::Lookup;
    return true;
  }
  Reader invoker(text);
  invoker.skip("findInvoker called for interface & protocol: ");
  event.interfaces = invoker.untilLast(",");
  event.protocol = invoker.untilLast(" sem=");
  if (!invoker.good()) return false;
  event.role = "invoker";
  event.kind = Kind::Lookup;
  return true;
}

/** Lines of which the beginning is all that matters. */
struct Beginning {
  std::string_view words;
  Kind kind;
};

constexpr std::array progressBeginnings = {
    Beginning{"Creating Service for second stage", Kind::LazyCreation},
    Beginning{"Creating Service Instance. Error in parameters.", Kind::IncompleteLine},
    Beginning{"Creating Service Info. Error in parameters.", Kind::IncompleteLine},
    Beginning{"Creating Legacy Service. Error in parameters.", Kind::IncompleteLine},
    Beginning{"Opening Lib: ", Kind::Opening},
    Beginning{"Opening library - ", Kind::Opening},
    Beginning{"Resolving symbol: ", Kind::Resolving},
    Beginning{"Resolving symbol - ", Kind::Resolving},
    Beginning{"Service Configurator: Calling creator fn", Kind::CallingCreator},
    Beginning{"Service Configurator: Calling init", Kind::CallingInit}};

constexpr std::array errorBeginnings = {
    Beginning{"Error opening library", Kind::CreationFailed},
    Beginning{"Error resolving symbol - ", Kind::CreationFailed},
    Beginning{"ServiceConfigurator::createService() : Error while init", Kind::CreationFailed},
    Beginning{"ServiceConfigurator::createServiceExecutor() : Error while init",
              Kind::CreationFailed},
    Beginning{"ServiceConfigurator::initialiseService() : Error while init", Kind::CreationFailed},
    Beginning{"ServiceConfigurator::processDirectives - invalid directive", Kind::InvalidLine},
    Beginning{"ServiceConfiguratr::Empty 'start_process' directive", Kind::IncompleteLine},
    Beginning{"ServiceConfigurator::processDirectives failed to open", Kind::FileNotOpened}};

template <typename Beginnings>
void readBeginning(const Beginnings& beginnings, const std::string& text,
                   ConfiguratorEvent& event) {
  for (const Beginning& beginning : beginnings) {
    if (!text.starts_with(beginning.words)) continue;
    event.kind = beginning.kind;
    // What stands behind the words, with or without the quotes, is the library or the symbol.
    event.library = text.substr(beginning.words.size());
    if (event.library.size() > 1 && event.library.front() == '\'') {
      event.library = event.library.substr(1, event.library.size() - 2);
    }
    return;
  }
}

}  // namespace

ConfiguratorEvent readConfiguratorLine(int level, const std::string& text) {
  ConfiguratorEvent event;
  event.text = text;
  if (level <= 2) {
    if (!readProcess(text, "start_process failed to start process: '", Kind::ProcessFailed,
                     event)) {
      readBeginning(errorBeginnings, text, event);
    }
    return event;
  }
  const bool read =
      readLookup(text, event) || readRecord(text, "Reg Invoker. Lib: ", "invoker", event) ||
      readRecord(text, "Reg Proxy. Lib: ", "proxy", event) ||
      readQuotedLine(text, "Creating Service. Lib: '", Kind::ServiceLine, event) ||
      readQuotedLine(text, "Creating Service Info. Lib: '", Kind::LazyLine, event) ||
      readLegacyLine(text, event) || readInitTook(text, event) ||
      readProcess(text, "start_process successfully started: '", Kind::ProcessStarted, event);
  if (!read) readBeginning(progressBeginnings, text, event);
  return event;
}

}  // namespace zerva
