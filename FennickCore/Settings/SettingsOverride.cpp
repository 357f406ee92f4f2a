#include "FennickCore/Settings/SettingsOverride.h"

#include "FennickCore/Settings/SettingsFields.h"
#include "FennickCore/Settings/SettingsReading.h"
#include "FennickCore/Settings/SettingsRules.h"
#include "FennickCore/Support/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <concepts>
#include <optional>
#include <vector>

namespace fennick {

namespace {

// Paths are often valid Base64 of other bytes, so the decoded text is checked.
bool isPath(const std::optional<BookmarkData> &bookmark) {
  return !bookmark || (!bookmark->empty() && bookmark->front() == std::byte{'/'} &&
                       std::ranges::count(*bookmark, std::byte{0}) == 0);
}

template <typename T>
bool atLeast(const std::optional<T> &value, T least) {
  return !value || *value >= least;
}

bool isShare(double value) { return value >= 0 && value <= 1; }

// Returns true for other namings.
template <typename Check>
bool sequence(const AppSettings &settings, Check check) {
  const auto *naming = std::get_if<PrefixSequenceNaming>(&settings.naming);
  return naming == nullptr || check(*naming);
}

// What a field accepts.
struct Accepted {
  std::string_view chinese;
  std::string_view english;
};

constexpr Accepted kPath{"绝对路径的 base64 编码，或 null", "an absolute path in base64, or null"};

// What the type of a field accepts.
Accepted accepted(bool) { return {"true 或 false", "true or false"}; }
Accepted accepted(std::uint16_t) { return {"0 到 65535 的整数", "a whole number from 0 to 65535"}; }
Accepted accepted(std::int64_t) { return {"整数", "a whole number"}; }
Accepted accepted(double) { return {"数", "a number"}; }
Accepted accepted(const std::string &) { return {"文字", "text"}; }
Accepted accepted(const std::optional<std::int64_t> &) {
  return {"整数，或 null", "a whole number, or null"};
}
Accepted accepted(const std::optional<std::string> &) { return {"文字，或 null", "text, or null"}; }
Accepted accepted(const std::optional<BookmarkData> &) { return kPath; }
Accepted accepted(OutputFormat) { return {"keep、jpeg、heic 或 png", "keep, jpeg, heic or png"}; }
Accepted accepted(const NamingPolicy &) {
  return {"timestamp、prefixSequence 或其 JSON 形式", "timestamp, prefixSequence or its JSON form"};
}
Accepted accepted(const SettingsRecord auto &) { return {"一个 JSON 对象", "a JSON object"}; }

// A field that accepts less than its type.
struct Rule {
  std::string_view key;
  Accepted accepted;
  bool (*holds)(const AppSettings &); // of a record whose types are right
};

constexpr Accepted kShare{"0 到 1 之间的数", "a number from 0 to 1"};
constexpr Accepted kFromOne{"不小于 1 的整数，或 null", "a whole number from 1, or null"};

using S = AppSettings;
using N = PrefixSequenceNaming;

constexpr std::array kRules{
    Rule{"saveFolderBookmark", kPath, [](const S &s) { return isPath(s.saveFolderBookmark); }},
    Rule{"naming.prefixSequence.prefix",
         {"不以“.”开头、不含“/”和控制字符的文字，连同分隔符不超过 200 字节",
          "text without \"/\" and control characters that does not begin with \".\", at most 200 bytes with "
          "the separator"},
         [](const S &s) {
           return sequence(s, [](const N &n) { return isNamePrefix(n.prefix) && fitsTogether(n); });
         }},
    Rule{"naming.prefixSequence.separator",
         {"不含“/”和控制字符的文字，连同前缀不超过 200 字节",
          "text without \"/\" and control characters, at most 200 bytes with the prefix"},
         [](const S &s) {
           return sequence(s, [](const N &n) { return isNamePart(n.separator) && fitsTogether(n); });
         }},
    Rule{"naming.prefixSequence.digits",
         {"1 到 9 的整数", "a whole number from 1 to 9"},
         [](const S &s) {
           return sequence(s,
                           [](const N &n) { return n.digits >= kFewestDigits && n.digits <= kMostDigits; });
         }},
    Rule{"naming.prefixSequence.start",
         {"不小于 0 的整数", "a whole number from 0"},
         [](const S &s) { return sequence(s, [](const N &n) { return n.start >= 0; }); }},
    Rule{"maxUploadBytes",
         {"不小于 1 的整数（字节）", "a whole number of bytes from 1"},
         [](const S &s) { return s.maxUploadBytes >= 1; }},
    Rule{"imaging.maxPixels", kFromOne,
         [](const S &s) { return atLeast<std::int64_t>(s.imaging.maxPixels, 1); }},
    Rule{"imaging.maxBytes", kFromOne,
         [](const S &s) { return atLeast<std::int64_t>(s.imaging.maxBytes, 1); }},
    Rule{"imaging.quality", kShare, [](const S &s) { return isShare(s.imaging.quality); }},
    Rule{"imaging.qualityFloor", kShare, [](const S &s) { return isShare(s.imaging.qualityFloor); }},
    Rule{"workflow.openWithAppBookmark", kPath,
         [](const S &s) { return isPath(s.workflow.openWithAppBookmark); }},
    Rule{"sessionSubfolder",
         {"一个不以“.”开头、不是 originals 或 export 的文件夹名，或 null",
          "one folder name that does not begin with \".\" and is not originals or export, or null"},
         [](const S &s) { return !s.sessionSubfolder || isSessionName(*s.sessionSubfolder); }},
    Rule{"galleryFolder",
         {"保存目录内不含“..”的相对路径，或 null",
          "a relative path inside the save folder without \"..\", or null"},
         [](const S &s) { return !s.galleryFolder || isGalleryPath(*s.galleryFolder); }},
    Rule{"folderLimit",
         {"不小于 0 的整数，或 null", "a whole number from 0, or null"},
         [](const S &s) { return atLeast<std::int64_t>(s.folderLimit, 0); }},
};

// Calls `visit(key, field)` for this field and all fields inside it.
void forEachKey(const auto &field, const std::string &key, auto &visit) {
  visit(key, field);
  if constexpr (requires { forEachField(field, visit); })
    forEachField(field, [&](std::string_view name, const auto &inner) {
      forEachKey(inner, dotted(key, name), visit);
    });
  if constexpr (std::same_as<decltype(field), const NamingPolicy &>)
    forEachKey(PrefixSequenceNaming{}, dotted(key, "prefixSequence"), visit);
}

Accepted acceptedBy(std::string_view key) {
  if (const auto *rule = std::ranges::find(kRules, key, &Rule::key); rule != kRules.end())
    return rule->accepted;
  Accepted found = accepted(NamingPolicy()); // only its JSON form has other keys inside
  const auto compare = [&](const std::string &each, const auto &field) {
    if (each == key)
      found = accepted(field);
  };
  forEachKey(AppSettings(), {}, compare);
  return found;
}

struct Value {
  std::string text;
  ParsedJson json; // discarded if the text is not JSON

  // The value for a field of type text.
  [[nodiscard]] ParsedJson asText() const {
    return json.is_string() ? ParsedJson(json.get_ref<const std::string &>()) : ParsedJson(text);
  }
};

// nullopt if there is no such key.
using Outcome = std::optional<ReadResult>;

ReadResult assign(auto &field, const std::string &key, const Value &value) {
  return readValue(value.json, key, field);
}

ReadResult assign(std::string &field, const std::string &key, const Value &value) {
  return readValue(value.asText(), key, field);
}

ReadResult assign(BookmarkData &field, const std::string &key, const Value &value) {
  return readValue(value.asText(), key, field);
}

ReadResult assign(OutputFormat &field, const std::string &key, const Value &value) {
  return readValue(value.asText(), key, field);
}

ReadResult assign(NamingPolicy &field, const std::string &key, const Value &value) {
  if (value.json.is_object())
    return readValue(value.json, key, field);
  const std::string name = value.asText().get<std::string>();
  if (name == "timestamp")
    field = TimestampNaming{};
  else if (name != "prefixSequence")
    return std::unexpected(SettingsError{key, {}});
  else if (!std::holds_alternative<PrefixSequenceNaming>(field))
    field = PrefixSequenceNaming{};
  return {};
}

template <typename T>
ReadResult assign(std::optional<T> &field, const std::string &key, const Value &value) {
  if (!value.json.is_null())
    return assign(field.emplace(), key, value);
  field.reset();
  return {};
}

Outcome setBelow(auto &, const std::string &, std::string_view, const Value &) { return std::nullopt; }
Outcome setBelow(NamingPolicy &naming, const std::string &outer, std::string_view path, const Value &value);
Outcome setBelow(SettingsRecord auto &record, const std::string &outer, std::string_view path,
                 const Value &value);

// Sets the field at `path`, or the field inside it that the rest of the path names.
Outcome setField(auto &field, const std::string &key, std::string_view path, const Value &value) {
  if (path.empty())
    return assign(field, key, value);
  return path.starts_with('.') ? setBelow(field, key, path.substr(1), value) : std::nullopt;
}

Outcome setBelow(SettingsRecord auto &record, const std::string &outer, std::string_view path,
                 const Value &value) {
  Outcome outcome;
  forEachField(record, [&](std::string_view name, auto &field) {
    if (!outcome && path.starts_with(name))
      outcome = setField(field, dotted(outer, name), path.substr(name.size()), value);
  });
  return outcome;
}

Outcome setBelow(NamingPolicy &naming, const std::string &outer, std::string_view path, const Value &value) {
  constexpr std::string_view kName = "prefixSequence";
  if (!path.starts_with(kName))
    return std::nullopt;
  if (!std::holds_alternative<PrefixSequenceNaming>(naming))
    naming = PrefixSequenceNaming{};
  return setField(std::get<PrefixSequenceNaming>(naming), dotted(outer, kName), path.substr(kName.size()),
                  value);
}

// Makes text from the command line fit for a message: without control characters and limited in length.
std::string shown(std::string_view text) {
  constexpr std::size_t kLongest = 80;
  std::string line = displayText(text.substr(0, kLongest));
  std::ranges::replace_if(line, [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
  return text.size() > kLongest ? line + "…" : line;
}

std::unexpected<std::string> refused(std::string_view key, std::string_view given) {
  const Accepted accepted = acceptedBy(key);
  return std::unexpected(fmt::format("{0} 不能设为“{1}”，应为{2} / {0} cannot be \"{1}\": it takes {3}", key,
                                     shown(given), accepted.chinese, accepted.english));
}

std::unexpected<std::string> unknown(std::string_view key) {
  std::vector<std::string> keys;
  const auto collect = [&](const std::string &each, const auto &) {
    if (!each.empty())
      keys.push_back(each);
  };
  forEachKey(AppSettings(), {}, collect);
  return std::unexpected(fmt::format("没有名为“{0}”的设置 / There is no setting \"{0}\"; there are {1}",
                                     shown(key), fmt::join(keys, ", ")));
}

bool isAtOrBelow(std::string_view key, std::string_view outer) {
  return key == outer || (key.starts_with(outer) && key.substr(outer.size()).starts_with('.'));
}

} // namespace

std::expected<void, std::string> applyOverride(AppSettings &settings, std::string_view keyValue) {
  if (keyValue.size() > kLargestSettings || !isValidUTF8(keyValue))
    return std::unexpected(
        fmt::format("“{0}”过长或不是 UTF-8 文字 / \"{0}\" is too long or not UTF-8 text", shown(keyValue)));
  const std::size_t equals = keyValue.find('=');
  if (equals == std::string_view::npos)
    return std::unexpected(
        fmt::format("“{0}”不是 KEY=VALUE 的形式 / \"{0}\" is not of the form KEY=VALUE", shown(keyValue)));
  const std::string_view key = keyValue.substr(0, equals);
  const std::string_view text = keyValue.substr(equals + 1);

  AppSettings changed = settings;
  const Value value{.text = std::string(text), .json = ParsedJson::parse(text, nullptr, false)};
  const Outcome outcome = setBelow(changed, {}, key, value);
  if (!outcome)
    return unknown(key);
  if (!*outcome)
    return refused(outcome->error().key, text);
  for (const Rule &rule : kRules)
    if (isAtOrBelow(rule.key, key) && !rule.holds(changed))
      return refused(rule.key, text);
  settings = std::move(changed);
  return {};
}

} // namespace fennick
