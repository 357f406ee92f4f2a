#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace fennick {

// The names in one folder. Answers two questions without visiting all names: how many photos and videos there
// are, and the highest number after a prefix. One thread at a time.
class TakenNames {
public:
  void insert(const std::string &name, FileKind kind);
  void erase(const std::string &name);

  [[nodiscard]] bool contains(const std::string &name) const { return names_.contains(name); }
  [[nodiscard]] std::int64_t mediaCount() const { return mediaCount_; }
  // Returns the largest number N of a name that consists of `stem`, N in decimal and an extension. Visits all
  // names the first time a stem is asked for, and again after the file with the highest number is gone.
  [[nodiscard]] std::optional<std::int64_t> highestNumber(const std::string &stem) const;

private:
  std::unordered_map<std::string, bool> names_; // whether the name counts as media
  std::int64_t mediaCount_ = 0;
  mutable std::map<std::string, std::optional<std::int64_t>> highest_; // by stem; known ones only
};

} // namespace fennick
