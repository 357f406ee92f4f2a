#include "FennickCore/Storage/SaveDestination.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Platform/Files/PathComponent.h"

#include <fmt/format.h>

#include <ctime>
#include <tuple>

namespace fennick {

namespace {

std::optional<PathComponent> sessionFolder(const std::string &name) {
  if (name.starts_with('.') || name == kOriginalsFolder || name == kExportFolder)
    return std::nullopt;
  return PathComponent::make(name);
}

std::tm localTime(Instant instant) {
  const std::time_t seconds =
      std::chrono::system_clock::to_time_t(std::chrono::floor<std::chrono::seconds>(instant));
  std::tm local{};
  ::tzset(); // the time zone may have changed since the program was started
  std::ignore = ::localtime_r(&seconds, &local); // fails only for years beyond an int
  return local;
}

} // namespace

std::filesystem::path SaveDestination::directory(Instant instant) const {
  std::filesystem::path result = folder;
  if (dateSubfolders)
    result /= localDayText(instant);
  if (subfolder)
    if (const auto session = sessionFolder(*subfolder))
      result = result / *session;
  return result;
}

std::string localDayText(Instant instant) {
  const std::tm local = localTime(instant);
  return fmt::format("{:04}-{:02}-{:02}", local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
}

std::string localSecondText(Instant instant) {
  const std::tm local = localTime(instant);
  return fmt::format("{:04}{:02}{:02}_{:02}{:02}{:02}", local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                     local.tm_hour, local.tm_min, local.tm_sec);
}

} // namespace fennick
