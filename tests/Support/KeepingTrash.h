#pragma once

#include "FennickCore/Platform/Files/Trash.h"

#include <fmt/format.h>

#include <filesystem>
#include <string>
#include <utility>

namespace fennick::test {

// A trash in a folder that refuses files of one name. One thread at a time.
class KeepingTrash final : public Trash {
public:
  explicit KeepingTrash(std::filesystem::path folder) : folder_(std::move(folder)) {}

  IOResult<Trashed> moveToTrash(const std::filesystem::path &file) override {
    if (file.filename() == refused)
      return std::unexpected(std::make_error_code(std::errc::not_supported));
    const auto kept = folder_ / fmt::format("{} {}", ++count_, file.filename().string());
    std::filesystem::create_directories(folder_);
    std::filesystem::rename(file, kept);
    return Trashed{.original = file, .file = kept, .record = {}};
  }

  std::string refused; // set while nothing is under way

private:
  const std::filesystem::path folder_;
  int count_ = 0;
};

} // namespace fennick::test
