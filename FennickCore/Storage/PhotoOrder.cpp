#include "FennickCore/Storage/PhotoOrder.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Platform/AsideFile.h"
#include "FennickCore/Platform/Random.h"
#include "FennickCore/Platform/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>
#include <tuple>

namespace fennick::PhotoOrder {

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

constexpr std::int64_t kLargestFile = 64 << 20; // bytes; hundreds of thousands of names

std::optional<std::string> content(const fs::path &file) {
  auto opened = ReadableFile::open(file);
  const auto size = opened ? opened->size() : IOResult<std::int64_t>(0);
  if (!opened || !size || *size > kLargestFile)
    return std::nullopt;
  std::string text(static_cast<std::size_t>(*size), '\0');
  std::size_t length = 0;
  while (length < text.size()) {
    const auto count = opened->read(std::as_writable_bytes(std::span(text)).subspan(length));
    if (!count)
      return std::nullopt;
    if (*count == 0)
      break; // cut short meanwhile
    length += *count;
  }
  text.resize(length);
  return text;
}

bool isListOfNames(const json &value) {
  return value.is_array() && std::ranges::all_of(value, [](const json &name) { return name.is_string(); });
}

} // namespace

std::vector<std::string> load(const fs::path &folder) {
  const auto text = content(folder / kOrderFile);
  if (!text)
    return {};
  const json stored = json::parse(*text, nullptr, false);
  if (!stored.is_object())
    return {};
  const auto order = stored.find("order");
  if (order == stored.end() || !isListOfNames(*order))
    return {};
  return order->get<std::vector<std::string>>();
}

void save(const std::vector<std::string> &names, const fs::path &folder, FileSystem &files) {
  const fs::path file = folder / kOrderFile;
  json order = json::array();
  std::ranges::copy_if(names, std::back_inserter(order), [](const auto &name) { return isValidUTF8(name); });
  if (order.empty()) {
    std::ignore = files.remove(file);
    return;
  }
  const fs::path aside = file.native() + "." + newUUID() + ".tmp";
  if (!writeAside(files, aside, json{{"order", std::move(order)}}.dump(), Durability::onDisk))
    return;
  if (!files.replace(aside, file)) {
    std::ignore = files.remove(aside);
    return;
  }
  std::ignore = files.syncDirectory(folder);
}

Ranks::Ranks(const std::vector<std::string> &names) {
  for (const auto &name : names)
    ranks_.try_emplace(name, ranks_.size());
}

std::size_t Ranks::of(const std::string &name) const {
  const auto found = ranks_.find(name);
  return found == ranks_.end() ? kUnlisted : found->second;
}

} // namespace fennick::PhotoOrder
