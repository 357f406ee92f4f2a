#pragma once

#include "FennickCore/Settings/SettingsCodec.h"

#include <nlohmann/json_fwd.hpp>

#include <expected>
#include <optional>
#include <string>

// Reading parsed JSON into fields. `key` is the field's dotted key, for the error. What is left in the field
// after a failure is open. Private to this room.
namespace fennick {

// The map that finds a key in logarithmic time: a hostile object with a great many keys costs no more than
// its size.
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

// "imaging" and "maxPixels" give "imaging.maxPixels"; the outermost record has the empty key.
[[nodiscard]] std::string dotted(std::string_view outer, std::string_view inner);

} // namespace fennick
