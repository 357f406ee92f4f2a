#include "Quarrow/Terminal/JsonReport.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <string_view>
#include <tuple>

namespace quarrow {

using Json = nlohmann::ordered_json;

namespace {

// Bytes of a path that are not UTF-8 become replacement characters.
void printLine(const Json &event) {
  const std::string line = event.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
  std::ignore = std::fwrite(line.data(), 1, line.size(), stdout);
  std::ignore = std::fflush(stdout);
}

Json textOrNull(const std::optional<std::string> &text) { return text ? Json(*text) : Json(nullptr); }

} // namespace

void JsonReport::listening(const Listening &state, Reason) {
  printLine({{"event", "listening"},
             {"port", state.port},
             {"accessKey", state.accessKey},
             {"phoneUrl", textOrNull(state.phoneURL)},
             {"uploadUrl", textOrNull(state.uploadURL)},
             {"saveFolder", state.saveFolder.string()}});
}

void JsonReport::received(const Received &file) {
  printLine({{"event", "received"},
             {"name", file.name},
             {"path", file.path.string()},
             {"bytes", file.bytes},
             {"note", file.note}});
}

void JsonReport::error(const std::string &message) { printLine({{"event", "error"}, {"message", message}}); }

void JsonReport::errorsSolved() { printLine({{"event", "error"}, {"message", nullptr}}); }

void JsonReport::check(const Check &result) {
  printLine({{"event", "check"},
             {"status", result.passed ? "ok" : "failed"},
             {"message", result.passed ? Json(nullptr) : Json(result.message)}});
}

void JsonReport::firewall(const fennick::FirewallFinding &finding) {
  printLine({{"event", "firewall"},
             {"kind", rawValue(finding.kind)},
             {"port", rawValue(finding.port)},
             {"command", finding.command}});
}

void JsonReport::waiting(int photos) { printLine({{"event", "waiting"}, {"photos", photos}}); }

} // namespace quarrow
