#include "FennickCore/Storage/PhotoOrigin.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Platform/Files/FileAttributes.h"
#include "FennickCore/Platform/Files/PathComponent.h"
#include "FennickCore/Platform/System/Log.h"
#include "FennickCore/Support/Text.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <cerrno>
#include <cstdint>

namespace fennick {

namespace fs = std::filesystem;

namespace {

using Json = nlohmann::json;

constexpr const char *kAttribute = "user.fennick.origin";
constexpr std::int64_t kLastSecond = 9'223'372'036; // the limit of the clock's nanoseconds, in the year 2262

// Limits the text, since other programs write attributes too.
std::string line(std::string_view text) { return oneLine(text, kMostOriginText); }

std::string lineOf(const Json &object, const char *key) { return line(object.value(key, std::string())); }

std::int64_t secondsOf(Instant instant) {
  return std::chrono::floor<std::chrono::seconds>(instant.time_since_epoch()).count();
}

std::optional<Instant> instantOf(const Json &seconds) {
  const auto value = seconds.is_number_integer() ? seconds.get<std::int64_t>() : -1;
  if (value < 0 || value > kLastSecond)
    return std::nullopt;
  return Instant(std::chrono::seconds(value));
}

} // namespace

std::optional<PhotoOrigin> readOrigin(const fs::path &file) {
  const auto stored = fileAttribute(file, kAttribute);
  if (!stored)
    return std::nullopt;
  try {
    const Json object = Json::parse(*stored);
    const auto received = instantOf(object.at("received"));
    if (!received)
      return std::nullopt;
    return PhotoOrigin{.address = lineOf(object, "address"),
                       .name = lineOf(object, "name"),
                       .receivedAt = *received,
                       .note = lineOf(object, "note"),
                       .original = lineOf(object, "original")};
  } catch (const Json::exception &) {
    return std::nullopt;
  }
}

void writeOrigin(const fs::path &file, const PhotoOrigin &origin) {
  Json object{{"received", secondsOf(origin.receivedAt)}};
  const auto put = [&](const char *key, const std::string &text) {
    if (!text.empty())
      object[key] = line(text);
  };
  put("address", origin.address);
  put("name", origin.name);
  put("note", origin.note);
  put("original", origin.original);
  const auto written = setFileAttribute(file, kAttribute, object.dump());
  if (!written && written.error().value() != ENOTSUP)
    log(fmt::format("cannot remember where {} came from: {}", file.string(), written.error().message()));
}

std::optional<fs::path> keptOriginal(const fs::path &file, const PhotoOrigin &origin) {
  const auto name = PathComponent::make(origin.original);
  if (!name)
    return std::nullopt;
  fs::path original = file.parent_path() / kOriginalsFolder / *name;
  const auto kind = fileKind(original);
  return kind && *kind == FileKind::regular ? std::optional(std::move(original)) : std::nullopt;
}

} // namespace fennick
