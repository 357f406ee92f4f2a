#pragma once

#include "FennickCore/Platform/FileSystem.h"

#include <cstddef>
#include <filesystem>
#include <limits>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// The order in which a person arranged the photos of one folder, kept in that folder as
// ".fennick-order.json". Any thread; two that write the same folder at once leave one of both orders.
namespace fennick::PhotoOrder {

// The names in their order. Empty when there is no such file or it is not what `save` writes. A link is not
// followed.
[[nodiscard]] std::vector<std::string> load(const std::filesystem::path &folder);

// Replaces the file in one step; without names, removes it. A name that is not UTF-8 cannot be written and is
// left out. What the disk refuses is not saved.
void save(const std::vector<std::string> &names, const std::filesystem::path &folder, FileSystem &files);

// Where each name stands: listed ones by their place, all others after them.
class Ranks {
public:
  static constexpr std::size_t kUnlisted = std::numeric_limits<std::size_t>::max();

  explicit Ranks(const std::vector<std::string> &names);
  [[nodiscard]] std::size_t of(const std::string &name) const;

private:
  std::unordered_map<std::string, std::size_t> ranks_;
};

} // namespace fennick::PhotoOrder
