#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace fennick::test {

// An empty folder that is removed with its content on destruction.
class TemporaryFolder {
public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder &) = delete;
  TemporaryFolder &operator=(const TemporaryFolder &) = delete;

  [[nodiscard]] const std::filesystem::path &path() const { return path_; }
  [[nodiscard]] std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

  // Writes a file under `name` and creates missing folders ("sub/name"). Returns its path.
  std::filesystem::path write(std::string_view name, std::string_view content = "content") const;
  [[nodiscard]] std::string read(std::string_view name) const;
  std::filesystem::path makeFolder(std::string_view name) const;
  // Returns the sorted names directly inside, or inside the folder `below`.
  [[nodiscard]] std::vector<std::string> names(std::string_view below = "") const;

private:
  std::filesystem::path path_;
};

} // namespace fennick::test
