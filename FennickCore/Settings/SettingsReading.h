#pragma once

#include "FennickCore/Settings/SettingsCodec.h"

#include <nlohmann/json_fwd.hpp>

#include <expected>
#include <optional>
#include <string>

// Reads parsed JSON into fields. `key` is the field's dotted key for the error. The field's value after a
// failure is unspecified. For this folder only.
namespace fennick {

// A map with logarithmic lookup, so that a hostile object with very many keys costs no more than its size.
using ParsedJson = nlohmann::json;
using ReadResult = std::expected<void, SettingsError>;

ReadResult readValue(const ParsedJson &json, const std::string &key, bool &value);
ReadResult readValue(const ParsedJson &json, const std::string &key, std::uint16_t &value);
ReadResult readValue(const ParsedJson &json, const std::string &key, std::int64_t &value);
ReadResult readValue(const ParsedJson &json, const std::string &key, double &value);
ReadResult readValue(const ParsedJson &json, const std::string &key, std::string &value);
ReadResult readValue(const ParsedJson &json, const std::string &key, BookmarkData &value);
ReadResult readValue(const ParsedJson &json, const std::string &key, OutputFormat &value);
ReadResult readValue(const ParsedJson &json, const std::string &key, NamingPolicy &value);
ReadResult readValue(const ParsedJson &json, const std::string &key, PrefixSequenceNaming &value);
ReadResult readValue(const ParsedJson &json, const std::string &key, ImagingOptions &value);
ReadResult readValue(const ParsedJson &json, const std::string &key, WorkflowOptions &value);
ReadResult readValue(const ParsedJson &json, const std::string &key, AppSettings &value);

template <typename T>
ReadResult readValue(const ParsedJson &json, const std::string &key, std::optional<T> &value) {
  return readValue(json, key, value.emplace());
}

// Joins "imaging" and "maxPixels" to "imaging.maxPixels"; the outermost record has an empty key.
[[nodiscard]] std::string dotted(std::string_view outer, std::string_view inner);

} // namespace fennick
