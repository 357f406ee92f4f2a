#include "FennickCore/Settings/SettingsCodec.h"

#include "FennickCore/Settings/SettingsFields.h"
#include "FennickCore/Settings/SettingsReading.h"
#include "FennickCore/Support/Text.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <stdexcept>

namespace fennick {

namespace {

using OrderedJson = nlohmann::ordered_json;

// `encode` catches what the library throws and checks for numbers that are not finite, which JSON cannot
// express and the library does not reject.
template <typename T>
OrderedJson stored(const T &value) {
  return value;
}

OrderedJson stored(double value) {
  if (!std::isfinite(value))
    throw std::domain_error("a number is not finite");
  return value;
}

OrderedJson stored(const BookmarkData &bytes) { return base64(bytes); }

OrderedJson stored(OutputFormat format) { return rawValue(format); }

template <SettingsRecord Record>
OrderedJson stored(const Record &record);

OrderedJson stored(const NamingPolicy &naming) {
  OrderedJson object = OrderedJson::object();
  if (const auto *sequence = std::get_if<PrefixSequenceNaming>(&naming))
    object["prefixSequence"] = stored(*sequence);
  else
    object["timestamp"] = OrderedJson::object();
  return object;
}

template <typename T>
void put(OrderedJson &object, std::string_view key, const T &value) {
  object[std::string(key)] = stored(value);
}

template <typename T>
void put(OrderedJson &object, std::string_view key, const std::optional<T> &value) {
  if (value)
    put(object, key, *value);
}

template <SettingsRecord Record>
OrderedJson stored(const Record &record) {
  OrderedJson object = OrderedJson::object();
  forEachField(record, [&](std::string_view key, const auto &field) { put(object, key, field); });
  return object;
}

} // namespace

std::string SettingsError::description() const {
  return key.empty() ? problem : fmt::format("{}: {}", key, problem);
}

std::expected<AppSettings, SettingsError> decodeAppSettings(std::string_view json) {
  if (json.size() > kLargestSettings)
    return std::unexpected(SettingsError{{}, fmt::format("settings exceed {} bytes", kLargestSettings)});
  const ParsedJson parsed = ParsedJson::parse(json, nullptr, false);
  if (parsed.is_discarded())
    return std::unexpected(SettingsError{{}, "settings are not valid JSON"});
  AppSettings settings;
  if (auto read = readValue(parsed, {}, settings); !read)
    return std::unexpected(read.error());
  return settings;
}

std::expected<std::string, SettingsError> encode(const AppSettings &settings) {
  try {
    return stored(settings).dump();
  } catch (const std::exception &refused) {
    return std::unexpected(SettingsError{{}, refused.what()});
  }
}

} // namespace fennick
