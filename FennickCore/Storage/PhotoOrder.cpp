#include "FennickCore/Storage/PhotoOrder.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Platform/Files/AsideFile.h"
#include "FennickCore/Platform/Files/FileStatus.h"
#include "FennickCore/Platform/Files/PathComponent.h"
#include "FennickCore/Storage/Leftovers.h"
#include "FennickCore/Support/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>
#include <tuple>

namespace fennick::PhotoOrder {

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

constexpr std::int64_t kLargestFile = 64 << 20; // bytes; hundreds of thousands of names
constexpr std::size_t kMostUnchecked = 1000;    // names; longer orders drop those without a file

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
      break; // truncated meanwhile
    length += *count;
  }
  text.resize(length);
  return text;
}

bool isListOfNames(const json &value) {
  return value.is_array() && std::ranges::all_of(value, [](const json &name) { return name.is_string(); });
}

bool contains(const Names &names, const std::string &name) {
  return std::ranges::find(names, name) != names.end();
}

bool isFileIn(const fs::path &folder, const std::string &name) {
  return PathComponent::make(name) && fileKind(folder / name);
}

// Returns the names of the photos and videos in the folder, newest first.
Names photosIn(const fs::path &folder) {
  auto entries = readFolder(folder, Links::follow, countsAsMedia);
  if (!entries)
    return {};
  std::ranges::sort(*entries, std::ranges::greater(),
                    [](const FolderEntry &entry) { return entry.status.created(); });
  Names names;
  std::ranges::transform(*entries, std::back_inserter(names), &FolderEntry::name);
  return names;
}

} // namespace

Names load(const fs::path &folder) {
  const auto text = content(folder / kOrderFile);
  if (!text)
    return {};
  const json stored = json::parse(*text, nullptr, false);
  if (!stored.is_object())
    return {};
  const auto order = stored.find("order");
  if (order == stored.end() || !isListOfNames(*order))
    return {};
  return order->get<Names>();
}

IOResult<void> save(const Names &names, const fs::path &folder, FileSystem &files) {
  const fs::path file = folder / kOrderFile;
  json order = json::array();
  std::ranges::copy_if(names, std::back_inserter(order), [](const auto &name) { return isValidUTF8(name); });
  if (order.empty()) {
    const auto removed = files.remove(file);
    return removed || removed.error() == std::errc::no_such_file_or_directory ? IOResult<void>() : removed;
  }
  const fs::path aside = temporaryIn(folder, Temporary::order);
  if (auto written = writeAside(files, aside, json{{"order", std::move(order)}}.dump(), Durability::onDisk);
      !written)
    return written;
  if (auto replaced = files.replace(aside, file); !replaced) {
    std::ignore = files.remove(aside);
    return replaced;
  }
  std::ignore = files.syncDirectory(folder);
  return {};
}

IOResult<Change> edit(const fs::path &folder, const Edit &edit, FileSystem &files) {
  std::error_code unresolved;
  const auto lock = DirectoryLock::lock(fs::canonical(folder, unresolved), DirectoryLock::Mode::exclusive);
  Change change{.folder = folder, .before = load(folder), .after = {}};
  change.after = edit(change.before);
  if (change.after.empty() && !change.before.empty())
    for (auto &name : photosIn(folder))
      change.present.insert(std::move(name));
  if (change.after != change.before)
    if (const auto saved = save(change.after, folder, files); !saved)
      return std::unexpected(saved.error());
  return change;
}

Names withNew(Names order, const Names &added, const fs::path &folder) {
  if (order.empty())
    return order;
  for (const auto &name : added) {
    if (!isFileIn(folder, name))
      continue; // it was moved again meanwhile
    std::erase(order, name);
    order.insert(order.begin(), name);
  }
  if (order.size() > kMostUnchecked)
    std::erase_if(order, [&](const std::string &name) { return !isFileIn(folder, name); });
  return order;
}

Names arranged(const Names &order, const Names &shown, const fs::path &folder) {
  Names result = shown;
  const std::set<std::string> known(shown.begin(), shown.end());
  std::ranges::copy_if(order, std::back_inserter(result), [&](const std::string &name) {
    return !known.contains(name) && isFileIn(folder, name);
  });
  return result;
}

Names undone(const Names &order, const Change &change) {
  if (change.before.empty())
    return {};
  std::set<std::string> known = change.present;
  known.insert(change.before.begin(), change.before.end());
  known.insert(change.after.begin(), change.after.end());
  Names result;
  // Without an order, only the folder tells which photos are new.
  std::ranges::copy_if(order.empty() && change.after.empty() ? photosIn(change.folder) : order,
                       std::back_inserter(result),
                       [&](const std::string &name) { return !known.contains(name); });
  result.insert(result.end(), change.before.begin(), change.before.end());
  return result;
}

Names withRestored(Names order, const std::string &oldName, const std::string &name) {
  if (order.empty() || contains(order, name))
    return order;
  const auto old = std::ranges::find(order, oldName);
  order.insert(old == order.end() ? order.begin() : old + 1, name);
  return order;
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
