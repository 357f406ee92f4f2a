#include "FennickCore/Platform/Files/PathComponent.h"

#include "FennickCore/Support/Text.h"

namespace fennick {

std::optional<PathComponent> PathComponent::make(std::string_view text) {
  constexpr std::size_t kLongestName = 255; // NAME_MAX of every Linux file system
  if (text.empty() || text.size() > kLongestName || text == "." || text == "..")
    return std::nullopt;
  if (text.find('/') != std::string_view::npos || text.find('\0') != std::string_view::npos)
    return std::nullopt;
  return PathComponent(text);
}

std::string lowerCasedExtension(std::string_view name) {
  const auto dot = name.rfind('.');
  if (dot == std::string_view::npos || dot == 0)
    return {};
  return lowerCased(name.substr(dot + 1));
}

} // namespace fennick
