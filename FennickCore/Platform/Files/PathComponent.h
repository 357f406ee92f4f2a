#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace fennick {

// One name inside a folder: not empty, not "." or "..", without "/" and NUL, at most 255 bytes. Every name
// from outside is converted to this type before it is joined to a path, so that it cannot leave its folder.
class PathComponent {
public:
  // Returns nullopt if `text` is not such a name.
  [[nodiscard]] static std::optional<PathComponent> make(std::string_view text);

  [[nodiscard]] const std::string &text() const { return text_; }

private:
  explicit PathComponent(std::string_view text) : text_(text) {}
  std::string text_;
};

[[nodiscard]] inline std::filesystem::path operator/(const std::filesystem::path &folder,
                                                     const PathComponent &name) {
  return folder / name.text();
}

// Returns the text after the last "." of `name` in lower case, or an empty text if there is no "." or only a
// leading one.
[[nodiscard]] std::string lowerCasedExtension(std::string_view name);

} // namespace fennick
