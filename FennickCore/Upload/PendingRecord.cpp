#include "FennickCore/Upload/PendingRecord.h"

#include "FennickCore/Platform/System/Random.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace fennick {

namespace fs = std::filesystem;

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kUUIDLength = 36;
constexpr double kCoarsestTime = 2e9; // FAT's, in nanoseconds

std::int64_t nanoseconds(Instant instant) { return instant.time_since_epoch().count(); }
Instant instantOf(std::int64_t nanoseconds) { return Instant(std::chrono::nanoseconds(nanoseconds)); }

Json jsonOf(const PhotoIdentity &identity) {
  return {{"inode", identity.inode}, {"bytes", identity.bytes}, {"modified", nanoseconds(identity.modified)}};
}

PhotoIdentity identityOf(const Json &json) {
  return {.inode = json.at("inode").get<std::uint64_t>(),
          .bytes = json.at("bytes").get<std::int64_t>(),
          .modified = instantOf(json.at("modified").get<std::int64_t>())};
}

Json jsonOf(const PrivateData &data) { return {{"location", data.location}, {"metadata", data.metadata}}; }

PrivateData dataOf(const Json &json) {
  return {.location = json.at("location").get<bool>(), .metadata = json.at("metadata").get<bool>()};
}

// Thrown for paths that leave the save folder.
struct OutsideFolder {};

fs::path pathOf(const Json &json, const fs::path &saveFolder) {
  const fs::path relative = json.get<std::string>();
  if (relative.empty() || relative.is_absolute() || std::ranges::find(relative, "..") != relative.end() ||
      relative.native().find('\0') != std::string::npos)
    throw OutsideFolder{};
  return saveFolder / relative;
}

std::optional<std::string> textOf(const Json &json, const char *key) {
  return json.contains(key) ? std::optional(json.at(key).get<std::string>()) : std::nullopt;
}

PendingRecord recordOf(const Json &json, const fs::path &saveFolder) {
  PendingRecord record{.upload = {.url = pathOf(json.at("path"), saveFolder),
                                  .saveFolder = saveFolder,
                                  .bytes = json.at("bytes").get<std::int64_t>(),
                                  .remoteAddress = textOf(json, "address").value_or(""),
                                  .mediaType = textOf(json, "mediaType"),
                                  .filename = textOf(json, "name"),
                                  .receivedAt = instantOf(json.at("received").get<std::int64_t>()),
                                  .source = json.at("fromPhone").get<bool>() ? UploadSource::phone
                                                                             : UploadSource::thisComputer},
                       .photo = identityOf(json.at("photo"))};
  if (json.contains("placing")) {
    const Json &placing = json.at("placing");
    record.placing = {.output = pathOf(placing.at("output"), saveFolder),
                      .target = pathOf(placing.at("target"), saveFolder),
                      .encoding = identityOf(placing.at("encoding")),
                      .remaining = dataOf(placing.at("remaining"))};
  }
  if (json.contains("kept"))
    record.kept = dataOf(json.at("kept"));
  return record;
}

template <typename Number>
bool takeNumber(std::string_view &text, char end, Number &number) {
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || stop == text.data() + text.size() || *stop != end)
    return false;
  text.remove_prefix(static_cast<std::size_t>(stop - text.data()) + 1);
  return true;
}

} // namespace

bool PhotoIdentity::looksLike(const PhotoIdentity &other) const {
  const auto asNumber = [](Instant instant) { return static_cast<double>(nanoseconds(instant)); };
  return bytes == other.bytes && std::abs(asNumber(modified) - asNumber(other.modified)) <= kCoarsestTime;
}

std::string pendingName(const PhotoIdentity &photo) {
  return fmt::format("{}-{}-{}-{}{}", newUUID(), photo.inode, photo.bytes, nanoseconds(photo.modified),
                     kPendingSuffix);
}

std::optional<PhotoIdentity> pendingIdentity(std::string_view name) {
  if (name.size() <= kUUIDLength || name[kUUIDLength] != '-' || !name.ends_with(kPendingSuffix))
    return std::nullopt;
  name.remove_prefix(kUUIDLength + 1);
  PhotoIdentity photo;
  std::int64_t modified = 0;
  if (!takeNumber(name, '-', photo.inode) || !takeNumber(name, '-', photo.bytes) ||
      !takeNumber(name, '.', modified))
    return std::nullopt;
  photo.modified = instantOf(modified);
  return photo;
}

std::string encodePending(const PendingRecord &record) {
  const UploadRecord &upload = record.upload;
  const auto relative = [&](const fs::path &path) {
    return path.lexically_relative(upload.saveFolder).string();
  };
  Json json{{"path", relative(upload.url)},
            {"photo", jsonOf(record.photo)},
            {"received", nanoseconds(upload.receivedAt)},
            {"bytes", upload.bytes},
            {"fromPhone", upload.source == UploadSource::phone},
            {"address", upload.remoteAddress}};
  if (upload.filename)
    json["name"] = *upload.filename;
  if (upload.mediaType)
    json["mediaType"] = *upload.mediaType;
  if (const auto &placing = record.placing)
    json["placing"] = {{"output", relative(placing->output)},
                       {"target", relative(placing->target)},
                       {"encoding", jsonOf(placing->encoding)},
                       {"remaining", jsonOf(placing->remaining)}};
  if (record.kept)
    json["kept"] = jsonOf(*record.kept);
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::optional<PendingRecord> decodePending(std::string_view text, const fs::path &saveFolder) {
  try {
    return recordOf(Json::parse(text), saveFolder);
  } catch (const Json::exception &) {
    return std::nullopt;
  } catch (const OutsideFolder &) {
    return std::nullopt;
  }
}

} // namespace fennick
