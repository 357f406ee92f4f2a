#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace fennick {

// One name inside a folder: not empty, not "." or "..", without "/" and NUL, at most 255 bytes. A name that
// came from outside passes through here before it is joined to a path, so that it cannot leave its folder.
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

// The text after the last "." of `name`, lower-cased; empty when there is no "." or the only one comes first.
[[nodiscard]] std::string lowerCasedExtension(std::string_view name);

} // namespace fennick
