#pragma once

#include "FennickCore/Storage/PhotoItem.h"
#include "FennickCore/Storage/PictureSizes.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

// What lies in a save folder right now. One thread at a time for each `sizes`.
namespace fennick::PhotoScan {

struct Listing {
  std::vector<PhotoItem> items;
  bool isArranged = false; // whether a folder of theirs has a custom order
};

// The first `limit` photos and videos in the save folder and the folders inside it, newest first. Where a
// folder has an order of its own, its photos take the places that they have by date in that order. Folders
// that cannot be read, or vanish meanwhile, count as empty; links are not followed, but that of `folder`
// itself. Nothing as soon as `overtaken` says that the answer is no longer wanted.
[[nodiscard]] std::optional<Listing> items(const std::filesystem::path &folder, std::size_t limit,
                                           PictureSizes &sizes, const std::function<bool()> &overtaken);

// Returns the item of a single file, or nullopt if it is not a photo or video.
[[nodiscard]] std::optional<PhotoItem> item(const std::filesystem::path &file, PictureSizes &sizes);

} // namespace fennick::PhotoScan
