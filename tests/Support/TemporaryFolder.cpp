#include "tests/Support/TemporaryFolder.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <system_error>

namespace fennick::test {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
  std::string pattern = (fs::temp_directory_path() / "tevrin-test-XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr)
    throw std::system_error(errno, std::generic_category(), pattern);
  path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

fs::path TemporaryFolder::write(std::string_view name, std::string_view content) const {
  fs::path file = path_ / name;
  fs::create_directories(file.parent_path());
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out.write(content.data(), std::ssize(content));
  if (!out.flush())
    throw std::system_error(std::make_error_code(std::errc::io_error), file.string());
  return file;
}

std::string TemporaryFolder::read(std::string_view name) const {
  std::ifstream in(path_ / name, std::ios::binary);
  if (!in)
    throw std::system_error(std::make_error_code(std::errc::no_such_file_or_directory), std::string(name));
  return {std::istreambuf_iterator<char>(in), {}};
}

fs::path TemporaryFolder::makeFolder(std::string_view name) const {
  fs::path folder = path_ / name;
  fs::create_directories(folder);
  return folder;
}

std::vector<std::string> TemporaryFolder::names(std::string_view below) const {
  std::vector<std::string> names;
  for (const auto &entry : fs::directory_iterator(path_ / below))
    names.push_back(entry.path().filename().string());
  std::ranges::sort(names);
  return names;
}

} // namespace fennick::test
