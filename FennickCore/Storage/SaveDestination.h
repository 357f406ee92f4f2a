#pragma once

#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Storage/NamingPolicy.h"

#include <filesystem>
#include <optional>
#include <string>

namespace fennick {

// Where received files are saved, and how they are named. A value; any thread.
struct SaveDestination {
  std::filesystem::path folder;         // the save folder
  bool dateSubfolders = false;          // one folder a day inside it
  NamingPolicy naming;                  // how files are named
  std::optional<std::string> subfolder; // a session's folder inside that; nullopt or empty: none

  bool operator==(const SaveDestination &) const = default;

  // Returns the folder for a file received at `instant`: folder/2024-05-01/session. The day is in the
  // computer's current time zone. A session name that is not a plain path component, is hidden or reserved is
  // ignored, so that no setting leads out of the save folder or to a folder that is not scanned.
  [[nodiscard]] std::filesystem::path directory(Instant instant) const;
};

// Formats `instant` in the computer's current time zone: "2024-05-01", and "20240501_093000".
[[nodiscard]] std::string localDayText(Instant instant);
[[nodiscard]] std::string localSecondText(Instant instant);

} // namespace fennick
