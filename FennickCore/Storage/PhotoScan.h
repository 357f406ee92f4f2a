#pragma once

#include "FennickCore/Storage/PhotoItem.h"
#include "FennickCore/Storage/PictureSizes.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

// Lists what a save folder contains now. One thread at a time for each `sizes`.
namespace fennick::PhotoScan {

struct Listing {
  std::vector<PhotoItem> items;
  bool isArranged = false; // whether one of their folders has a custom order
};

// Returns the first `limit` photos and videos in the save folder and the folders inside it, newest first. If
// a folder has a custom order, its photos take their places by date in that order. Folders that cannot be
// read, or vanish meanwhile, count as empty; links are not followed, except that `folder` itself may be one.
// Returns nullopt as soon as `overtaken` returns true.
[[nodiscard]] std::optional<Listing> items(const std::filesystem::path &folder, std::size_t limit,
                                           PictureSizes &sizes, const std::function<bool()> &overtaken);

// Returns the item of a single file, or nullopt if it is not a photo or video.
[[nodiscard]] std::optional<PhotoItem> item(const std::filesystem::path &file, PictureSizes &sizes);

} // namespace fennick::PhotoScan
