#include "FennickCore/Settings/SettingsReading.h"

#include "FennickCore/Settings/SettingsFields.h"
#include "FennickCore/Support/Text.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <concepts>
#include <utility>

namespace fennick {

namespace {

std::unexpected<SettingsError> failure(const std::string &key, std::string problem) {
  return std::unexpected(SettingsError{key, std::move(problem)});
}

std::unexpected<SettingsError> wrongType(const ParsedJson &json, const std::string &key,
                                         std::string_view wanted) {
  return failure(key, fmt::format("must be {}, found {}", wanted, json.type_name()));
}

// Starts from an initial record, so that values of an earlier read never remain.
template <SettingsRecord Record>
ReadResult readRecord(const ParsedJson &json, const std::string &key, Record &record) {
  if (!json.is_object())
    return wrongType(json, key, "an object");
  record = Record{};
  ReadResult result;
  forEachField(record, [&](std::string_view name, auto &field) {
    const auto found = json.find(name);
    if (result && found != json.end() && !found->is_null())
      result = readValue(*found, dotted(key, name), field);
  });
  return result;
}

template <std::integral T>
ReadResult readInteger(const ParsedJson &json, const std::string &key, T &value) {
  if (!json.is_number_integer())
    return wrongType(json, key, "a whole number");
  const auto fits = [&](auto number) {
    if (std::in_range<T>(number))
      value = static_cast<T>(number);
    return std::in_range<T>(number);
  };
  if (json.is_number_unsigned() ? fits(json.get<std::uint64_t>()) : fits(json.get<std::int64_t>()))
    return {};
  return failure(key, fmt::format("must be from {} to {}, found {}", std::numeric_limits<T>::min(),
                                  std::numeric_limits<T>::max(), json.dump()));
}

} // namespace

std::string dotted(std::string_view outer, std::string_view inner) {
  return outer.empty() ? std::string(inner) : fmt::format("{}.{}", outer, inner);
}

ReadResult readValue(const ParsedJson &json, const std::string &key, bool &value) {
  if (!json.is_boolean())
    return wrongType(json, key, "true or false");
  value = json.get<bool>();
  return {};
}

ReadResult readValue(const ParsedJson &json, const std::string &key, std::uint16_t &value) {
  return readInteger(json, key, value);
}

ReadResult readValue(const ParsedJson &json, const std::string &key, std::int64_t &value) {
  return readInteger(json, key, value);
}

ReadResult readValue(const ParsedJson &json, const std::string &key, double &value) {
  if (!json.is_number())
    return wrongType(json, key, "a number");
  value = json.get<double>();
  return {};
}

ReadResult readValue(const ParsedJson &json, const std::string &key, std::string &value) {
  if (!json.is_string())
    return wrongType(json, key, "a string");
  value = json.get<std::string>();
  return {};
}

ReadResult readValue(const ParsedJson &json, const std::string &key, BookmarkData &value) {
  if (!json.is_string())
    return wrongType(json, key, "a base64 string");
  auto bytes = base64Decoded(json.get_ref<const std::string &>());
  if (!bytes)
    return failure(key, "must be base64 with padding");
  value = std::move(*bytes);
  return {};
}

ReadResult readValue(const ParsedJson &json, const std::string &key, OutputFormat &value) {
  const auto format = json.is_string() ? outputFormat(json.get_ref<const std::string &>()) : std::nullopt;
  if (!format)
    return failure(key, R"(must be "keep", "jpeg", "heic" or "png")");
  value = *format;
  return {};
}

ReadResult readValue(const ParsedJson &json, const std::string &key, NamingPolicy &value) {
  if (!json.is_object())
    return wrongType(json, key, "an object");
  const auto timestamp = json.find("timestamp");
  const auto sequence = json.find("prefixSequence");
  if ((timestamp != json.end()) == (sequence != json.end()))
    return failure(key, "Invalid number of keys found, expected one.");
  if (sequence != json.end())
    return readValue(*sequence, dotted(key, "prefixSequence"), value.emplace<PrefixSequenceNaming>());
  if (!timestamp->is_object())
    return wrongType(*timestamp, dotted(key, "timestamp"), "an object");
  value = TimestampNaming{};
  return {};
}

ReadResult readValue(const ParsedJson &json, const std::string &key, PrefixSequenceNaming &value) {
  return readRecord(json, key, value);
}

ReadResult readValue(const ParsedJson &json, const std::string &key, ImagingOptions &value) {
  return readRecord(json, key, value);
}

ReadResult readValue(const ParsedJson &json, const std::string &key, WorkflowOptions &value) {
  return readRecord(json, key, value);
}

ReadResult readValue(const ParsedJson &json, const std::string &key, AppSettings &value) {
  return readRecord(json, key, value);
}

} // namespace fennick
