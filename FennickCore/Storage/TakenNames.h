#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace fennick {

// The names in one folder, with the two questions that receiving a photo asks of them answered without
// walking them all: how many photos and videos there are, and the highest number behind a prefix. One thread
// at a time.
class TakenNames {
public:
  void insert(const std::string &name, FileKind kind);
  void erase(const std::string &name);

  [[nodiscard]] bool contains(const std::string &name) const { return names_.contains(name); }
  [[nodiscard]] std::int64_t mediaCount() const { return mediaCount_; }
  // The largest number N of a name made of `stem`, N in decimal and an extension. Walks the folder the first
  // time a stem is asked for, and again after the file with the highest number went.
  [[nodiscard]] std::optional<std::int64_t> highestNumber(const std::string &stem) const;

private:
  std::unordered_map<std::string, bool> names_; // whether the name counts as media
  std::int64_t mediaCount_ = 0;
  mutable std::map<std::string, std::optional<std::int64_t>> highest_; // by stem, as far as known
};

} // namespace fennick
