#pragma once

#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Storage/NamingPolicy.h"

#include <filesystem>
#include <optional>
#include <string>

namespace fennick {

// Where and under which name received files land. A value; any thread.
struct SaveDestination {
  std::filesystem::path folder;         // the save folder
  bool dateSubfolders = false;          // one folder a day inside it
  NamingPolicy naming;                  // how files are named
  std::optional<std::string> subfolder; // a session's folder inside that; absent or empty means none

  bool operator==(const SaveDestination &) const = default;

  // The folder for a file received at `instant`: folder/2024-05-01/session. The day is that of the computer's
  // current time zone. A session name that is not one plain path component, is hidden or is reserved is
  // passed over, so that no setting leads out of the save folder or to where photos are not looked for.
  [[nodiscard]] std::filesystem::path directory(Instant instant) const;
};

// `instant` in the computer's current time zone: "2024-05-01", and "20240501_093000".
[[nodiscard]] std::string localDayText(Instant instant);
[[nodiscard]] std::string localSecondText(Instant instant);

} // namespace fennick
